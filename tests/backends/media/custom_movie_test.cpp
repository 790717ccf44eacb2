// What own settings and sizes make of a tape's pictures.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <tuple>

#include "compression_choices.h"
#include "decoded_movie.h"
#include "movie_reader.h"
#include "moving_clips.h"
#include "support/scratch_folder.h"

namespace zq::media {
namespace {

using test::custom;
using test::decodeClip;
using test::DecodedMovie;
using test::decodeMovie;
using test::limitedRange;
using test::movingClip;
using test::psnrOfField;
using test::ReadMovie;
using test::readMovie;
using test::sampleAt;
using test::ScratchFolder;
using test::writeCompressed;
using testing::SizeIs;

constexpr DVSystem kNtsc = DVSystem::ntsc525_60;
constexpr DVSystem kPal = DVSystem::pal625_50;
constexpr std::size_t kFrames = 10;

TEST(CustomMovie, OfH264KeepsBothFieldsWhenAskedTo) {
  for (const DVSystem system : {kPal, kNtsc}) {
    const ScratchFolder folder;
    const test::Clip clip = movingClip(system, false, kFrames);
    writeCompressed(clip, folder.file("a.mov"), custom({"codec=h264", "scan=keep", "quality=10", "sound=pcm"}));
    const DecodedMovie movie = decodeMovie(folder.file("a.mov"));
    const auto tape = decodeClip(clip);
    ASSERT_THAT(movie.pictures, SizeIs(kFrames));
    for (std::size_t i = 0; i < kFrames; ++i) {
      EXPECT_EQ(movie.pictures[i]->interlaced_frame, 1);
      EXPECT_EQ(movie.pictures[i]->top_field_first, 0);
      EXPECT_GT(psnrOfField(*movie.pictures[i], *tape[i], 0), 35);
      EXPECT_GT(psnrOfField(*movie.pictures[i], *tape[i], 1), 35);
    }
  }
}

TEST(CustomMovie, OfAFrameRateHasTheFirstFieldOfEachFrame) {
  const ScratchFolder folder;
  const test::Clip clip = movingClip(kPal, false, kFrames);
  writeCompressed(clip, folder.file("a.mp4"), custom({"codec=h264", "frameRate=25"}));
  const DecodedMovie movie = decodeMovie(folder.file("a.mp4"));
  const auto tape = decodeClip(clip);
  ASSERT_THAT(movie.pictures, SizeIs(kFrames));
  EXPECT_NEAR(av_q2d(readMovie(folder.file("a.mp4")).pictures.at(0).frameRate), 25, 0.001);
  for (std::size_t i = 0; i < kFrames; ++i) EXPECT_GT(psnrOfField(*movie.pictures[i], *tape[i], 1), 35);
}

TEST(CustomMovie, OfEachFrameRateIsAsLongAsItsSound) {
  for (const char* rate : {"24", "23.976", "29.97", "30", "60"}) {
    const ScratchFolder folder;
    writeCompressed(movingClip(kPal, false, kFrames), folder.file("a.mp4"),
                    custom({"codec=h264", std::string("frameRate=") + rate, "speed=ultrafast"}));
    const ReadMovie movie = readMovie(folder.file("a.mp4"));
    const double seconds = static_cast<double>(movie.pictures.at(0).packets.size()) / std::stod(rate);
    EXPECT_NEAR(seconds, kFrames / 25.0, 1.01 / std::stod(rate)) << rate;
  }
}

// The last picture is as long as the others.
TEST(CustomMovie, OfARateOfItsOwnHasAllPicturesOfTheTapesTime) {
  struct Case {
    DVSystem system;
    const char* rate;
    int frames;
    std::size_t pictures;
  };
  for (const Case& c : {Case{kPal, "50", 10, 20}, Case{kPal, "60", 10, 24}, Case{kPal, "30", 10, 12},
                        Case{kPal, "25", 10, 10}, Case{kNtsc, "59.94", 10, 20}, Case{kNtsc, "29.97", 10, 10}}) {
    const ScratchFolder folder;
    writeCompressed(movingClip(c.system, false, c.frames), folder.file("a.mp4"),
                    custom({"codec=h264", std::string("frameRate=") + c.rate, "speed=ultrafast"}));
    EXPECT_EQ(readMovie(folder.file("a.mp4")).pictures.at(0).packets.size(), c.pictures) << c.rate;
  }
}

using SizeOfCodec = std::tuple<const char*, PictureSize>;

class SizedMovie : public testing::TestWithParam<SizeOfCodec> {};

INSTANTIATE_TEST_SUITE_P(OfH264, SizedMovie,
                         testing::Combine(testing::Values("h264"),
                                          testing::Values(PictureSize{160, 120}, PictureSize{320, 240},
                                                          PictureSize{640, 480}, PictureSize{1280, 720},
                                                          PictureSize{1980, 1080})));
INSTANTIATE_TEST_SUITE_P(OfTheOthers, SizedMovie,
                         testing::Combine(testing::Values("h265", "prores", "ffv1", "mjpeg", "av1"),
                                          testing::Values(PictureSize{160, 120}, PictureSize{1980, 1080})));

TEST_P(SizedMovie, HasExactlyThisSizeAndTheShapeOfTheTape) {
  const auto& [codec, size] = GetParam();
  for (const bool wide : {false, true}) {
    const DVSystem system = wide ? kNtsc : kPal;
    const ScratchFolder folder;
    const auto compression = custom({std::string("codec=") + codec}, size);
    const auto& containers = static_cast<const MovieCompression&>(*compression).containers();
    const std::string path = folder.file("a." + containers.front());
    writeCompressed(movingClip(system, wide, 2), path, compression);
    const DecodedMovie movie = decodeMovie(path);
    // One for each field, of codecs that would keep them too: their lines are lost, and no movement may be.
    ASSERT_THAT(movie.pictures, SizeIs(4));
    EXPECT_EQ(movie.pictures[0]->width, size.width);
    EXPECT_EQ(movie.pictures[0]->height, size.height);
    EXPECT_EQ(movie.pictures[0]->interlaced_frame, 0);
    const AVRational shape = readMovie(path).pictures.at(0).sampleAspect;
    EXPECT_NEAR(av_q2d(shape) * size.width / size.height, wide ? 16.0 / 9 : 4.0 / 3, 1e-3);
    // Nothing is black or missing: the mean is the tape's.
    const auto mean = [](const AVFrame& picture) {
      double sum = 0;
      for (int y = 0; y < picture.height; ++y) {
        for (int x = 0; x < picture.width; ++x) sum += sampleAt(picture, 0, x, y);
      }
      return sum / picture.width / picture.height;
    };
    const double got = limitedRange(*movie.pictures[1], mean(*movie.pictures[1]));
    EXPECT_NEAR(got, mean(*decodeClip(movingClip(system, wide, 1)).at(0)), 2);
  }
}

}  // namespace
}  // namespace zq::media
