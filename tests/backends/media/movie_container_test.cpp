// What is in the movies of each container, read back.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <string>

#include "support/dv_frames.h"
#include "written_movies.h"

namespace zq::media {
namespace {

using test::Clip;
using test::EachContainer;
using test::eachContainerAndSystem;
using test::expectPicturesOf;
using test::expectSound;
using test::FrameBytes;
using test::makeClip;
using test::makeFrame;
using test::nameOfContainerAndSystem;
using test::ReadMovie;
using test::readMovie;
using test::ReadTrack;
using test::recordedSound;
using test::sampleBufferOf;
using test::ScratchFolder;
using test::timecodeOf;
using test::write;
using test::writerFor;
using testing::AllOf;
using testing::HasSubstr;
using testing::SizeIs;

constexpr DVSystem kNtsc = DVSystem::ntsc525_60;
constexpr DVSystem kPal = DVSystem::pal625_50;

class ZoneOfTheTest {
 public:
  ZoneOfTheTest() {
    setenv("TZ", "CET-1CEST,M3.5.0,M10.5.0/3", 1);
    tzset();
  }
  ~ZoneOfTheTest() {
    unsetenv("TZ");
    tzset();
  }
};

class MovieContainer : public EachContainer {};

INSTANTIATE_TEST_SUITE_P(EachSystem, MovieContainer, eachContainerAndSystem(), &nameOfContainerAndSystem);

TEST_P(MovieContainer, HasPicturesByteForByteAndSoundAsRecorded) {
  const Clip clip = makeClip(system(), 40);
  write(clip, path());
  const ReadMovie movie = readMovie(path());
  ASSERT_THAT(movie.pictures, SizeIs(1));
  expectPicturesOf(clip, movie.pictures[0], clip.size());
  ASSERT_THAT(movie.sounds, SizeIs(1));
  EXPECT_EQ(movie.sounds[0].sampleRate, 48000);
  expectSound(recordedSound(clip, 0), movie.sounds[0]);
}

TEST_P(MovieContainer, SaysWhatItsPicturesAre) {
  write(makeClip(system(), 10), path());
  const ReadMovie movie = readMovie(path());
  ASSERT_THAT(movie.pictures, SizeIs(1));
  const ReadTrack& track = movie.pictures[0];
  const bool isPal = system() == kPal;
  EXPECT_EQ(track.codec, AV_CODEC_ID_DVVIDEO);
  EXPECT_EQ(track.tag, !is("mov") ? "dvsd" : isPal ? "dvcp" : "dvc ");
  EXPECT_EQ(track.width, 720);
  EXPECT_EQ(track.height, isPal ? 576 : 480);
  EXPECT_EQ(av_cmp_q(track.frameRate, isPal ? AVRational{25, 1} : AVRational{30000, 1001}), 0);
  EXPECT_EQ(av_cmp_q(track.sampleAspect, isPal ? AVRational{16, 15} : AVRational{8, 9}), 0);
  // AVI has no field for it that programs read; the DV stream itself says it there.
  if (!is("avi")) {
    EXPECT_EQ(track.fieldOrder, AV_FIELD_BT);
  }
}

TEST_P(MovieContainer, SaysThatAPictureIsWide) {
  FrameStamp stamp;
  stamp.aspect = 0;
  write(makeClip(system(), 10, stamp), path());
  const ReadMovie movie = readMovie(path());
  ASSERT_THAT(movie.pictures, SizeIs(1));
  const AVRational expected = system() == kPal ? AVRational{64, 45} : AVRational{32, 27};
  EXPECT_EQ(av_cmp_q(movie.pictures[0].sampleAspect, expected), 0);
}

TEST_P(MovieContainer, HasTimecodeAndDateOfItsFirstFrame) {
  const ZoneOfTheTest zone;
  FrameStamp stamp;
  stamp.timecode = timecodeOf(1, 2, 3, 4);
  stamp.dateTime = StampDateTime{2004, 7, 15, 13, 30, 45};
  write(makeClip(system(), 10, stamp), path());
  const ReadMovie movie = readMovie(path());
  EXPECT_EQ(movie.metadataFor("timecode"), "01:02:03:04");
  EXPECT_EQ(movie.metadataFor("date"), "2004-07-15T13:30:45");
  // The instant, which AVI has no place for.
  if (!is("avi")) {
    EXPECT_EQ(movie.metadataFor("creation_time"), "2004-07-15T11:30:45.000000Z");
  }
}

TEST_P(MovieContainer, SaysNoTimecodeRatherThanABrokenOne) {
  FrameStamp stamp;
  stamp.timecode = timecodeOf(25, 2, 3, 4);
  stamp.dateTime = StampDateTime{2004, 15, 39, 13, 30, 45};
  const Clip clip = makeClip(system(), 5, stamp);
  write(clip, path());
  const ReadMovie movie = readMovie(path());
  ASSERT_THAT(movie.pictures, SizeIs(1));
  expectPicturesOf(clip, movie.pictures[0], clip.size());
  EXPECT_EQ(movie.metadataFor("timecode"), "");
  EXPECT_EQ(movie.metadataFor("date"), "");
}

TEST_P(MovieContainer, IsGoneWhenItGotNoFrame) {
  const auto writer = writerFor(path());
  EXPECT_TRUE(std::filesystem::exists(path()));
  EXPECT_TRUE(writer->finish().ok());
  EXPECT_FALSE(std::filesystem::exists(path()));
}

TEST_P(MovieContainer, RefusesAFrameOfTheOtherSystemAndIsCompleteWithoutIt) {
  const Clip clip = makeClip(system(), 3);
  const auto writer = writerFor(path());
  for (const auto& frame : clip) ASSERT_TRUE(writer->append(frame).ok());
  const Status refused = writer->append(sampleBufferOf(makeFrame(system() == kPal ? kNtsc : kPal)));
  ASSERT_FALSE(refused.ok());
  EXPECT_THAT(refused.error().text(), AllOf(HasSubstr(path()), HasSubstr("another file")));
  EXPECT_TRUE(writer->finish().ok());
  expectPicturesOf(clip, readMovie(path()).pictures.at(0), 3);
}

TEST_P(MovieContainer, KeepsTheSoundOfAClipThatStartsWithBlankFrames) {
  Clip clip{sampleBufferOf(makeFrame(system())),
            sampleBufferOf(SharedBytes::copyOf(FrameBytes(frameSizeOf(system()))))};
  const Clip sounding = makeClip(system(), 8);
  clip.insert(clip.end(), sounding.begin(), sounding.end());
  write(clip, path());
  const ReadMovie movie = readMovie(path());
  expectPicturesOf(clip, movie.pictures.at(0), clip.size());
  const int silentSamples = system() == kPal ? 3840 : 3203;
  std::vector<std::int16_t> expected(static_cast<std::size_t>(2 * silentSamples));
  const auto recorded = recordedSound(clip, 0);
  expected.insert(expected.end(), recorded.begin(), recorded.end());
  expectSound(expected, movie.sounds.at(0));
}

TEST_P(MovieContainer, TakesShapeAndDateFromLaterFramesWhenTheFirstOneIsBlank) {
  FrameStamp stamp;
  stamp.aspect = 0;
  stamp.timecode = timecodeOf(1, 2, 3, 4);
  stamp.dateTime = StampDateTime{2004, 7, 15, 13, 30, 45};
  Clip clip = makeClip(system(), 8, stamp);
  clip.insert(clip.begin(), sampleBufferOf(SharedBytes::copyOf(FrameBytes(frameSizeOf(system())))));
  write(clip, path());
  const ReadMovie movie = readMovie(path());
  const AVRational wide = system() == kPal ? AVRational{64, 45} : AVRational{32, 27};
  EXPECT_EQ(av_cmp_q(movie.pictures.at(0).sampleAspect, wide), 0);
  EXPECT_EQ(movie.metadataFor("date"), "2004-07-15T13:30:45");
  EXPECT_EQ(movie.metadataFor("timecode"), "");
}

TEST_P(MovieContainer, HasASilentTrackWhenTheTapeHasNoSound) {
  for (const int frames : {7, 100}) {
    const std::string file = folder_.file(std::to_string(frames) + "." + extension());
    const Clip clip(static_cast<std::size_t>(frames), sampleBufferOf(makeFrame(system())));
    write(clip, file);
    const ReadMovie movie = readMovie(file);
    expectPicturesOf(clip, movie.pictures.at(0), clip.size());
    const std::int64_t samples =
        system() == kPal ? std::int64_t{1920} * frames : std::int64_t{frames} * 48000 * 1001 / 30000;
    ASSERT_THAT(movie.sounds, SizeIs(1));
    EXPECT_EQ(movie.sounds[0].sampleRate, 48000);
    expectSound(std::vector<std::int16_t>(static_cast<std::size_t>(2 * samples)), movie.sounds[0]);
  }
}

TEST(MovieTimecode, IsCountedDropFrameWhereTheTapeIs) {
  const ScratchFolder folder;
  FrameStamp stamp;
  stamp.dropFrame = true;
  stamp.timecode = timecodeOf(1, 2, 0, 2);
  write(makeClip(kNtsc, 5, stamp), folder.file("a.mov"));
  EXPECT_EQ(readMovie(folder.file("a.mov")).metadataFor("timecode"), "01:02:00;02");
  // Numbers that this way of counting leaves out are on no sound tape.
  stamp.timecode = timecodeOf(1, 2, 0, 1);
  write(makeClip(kNtsc, 5, stamp), folder.file("b.mov"));
  EXPECT_EQ(readMovie(folder.file("b.mov")).metadataFor("timecode"), "");
}

}  // namespace
}  // namespace zq::media
