// What presets and own settings make of a tape's pictures, read back with libavcodec.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <memory>
#include <string>
#include <tuple>

#include "compression_choices.h"
#include "decoded_movie.h"
#include "movie_reader.h"
#include "moving_clips.h"
#include "support/scratch_folder.h"

namespace zq::media {
namespace {

using test::decodeClip;
using test::DecodedMovie;
using test::DecodedPicture;
using test::decodeMovie;
using test::movingClip;
using test::presetNamed;
using test::Psnr;
using test::psnrOfField;
using test::ReadMovie;
using test::readMovie;
using test::ReadTrack;
using test::sampleAt;
using test::ScratchFolder;
using test::writeCompressed;
using testing::AnyOf;
using testing::SizeIs;

constexpr DVSystem kNtsc = DVSystem::ntsc525_60;
constexpr DVSystem kPal = DVSystem::pal625_50;
constexpr std::size_t kFrames = 10;

// Each preset with each system and shape.

class CompressedMovie : public testing::TestWithParam<std::tuple<const char*, DVSystem, bool>> {
 protected:
  void SetUp() override {
    const auto preset = std::ranges::find_if(compressionPresets(), [&](const CompressionPreset& row) {
      return row.identifier == std::string(std::get<0>(GetParam()));
    });
    settings_ = std::make_unique<CompressionSettings>(preset->settings());
    path_ = folder_.file("clip." + preset->containers().front());
    writeCompressed(clip_, path_, presetNamed(preset->identifier));
  }
  bool isPal() const { return std::get<1>(GetParam()) == kPal; }
  bool isWide() const { return std::get<2>(GetParam()); }
  bool isInterlaced() const { return settings_->scan == Scan::keep; }
  std::string codec() const { return settings_->codec->key; }

  void expectFields(const DecodedMovie& movie) const {
    const auto tape = decodeClip(clip_);
    ASSERT_EQ(tape.size(), kFrames);
    for (const DecodedPicture& picture : movie.pictures) {
      EXPECT_EQ(picture->interlaced_frame, isInterlaced() ? 1 : 0);
      EXPECT_EQ(picture->top_field_first, 0);
    }
    const std::size_t perFrame = isInterlaced() ? 1 : 2;
    for (std::size_t i = 0; i < kFrames; ++i) {
      const AVFrame& first = *movie.pictures[perFrame * i];
      const AVFrame& second = *movie.pictures[perFrame * i + perFrame - 1];
      EXPECT_GT(psnrOfField(first, *tape[i], 1), 35) << "bottom field of frame " << i;
      EXPECT_GT(psnrOfField(second, *tape[i], 0), 35) << "top field of frame " << i;
      // The measure would show the fields the other way round.
      EXPECT_LT(psnrOfField(first, *tape[(i + 1) % kFrames], 0), 30);
    }
  }

  const ScratchFolder folder_;
  const test::Clip clip_ = movingClip(std::get<1>(GetParam()), std::get<2>(GetParam()), kFrames);
  std::unique_ptr<CompressionSettings> settings_;
  std::string path_;
};

INSTANTIATE_TEST_SUITE_P(EachPreset, CompressedMovie,
                         testing::Combine(testing::Values("h264", "h265", "prores", "ffv1", "ffv1-pcm", "mjpeg", "av1"),
                                          testing::Values(kPal, kNtsc), testing::Bool()),
                         [](const auto& parameters) {
                           std::string name = std::get<0>(parameters.param);
                           std::ranges::replace(name, '-', '_');
                           name += std::get<1>(parameters.param) == kPal ? "_625_50" : "_525_60";
                           return name + (std::get<2>(parameters.param) ? "_wide" : "");
                         });

TEST_P(CompressedMovie, IsTheTapeWithItsShapeColoursFieldsAndTimecode) {
  const ReadMovie movie = readMovie(path_);
  ASSERT_THAT(movie.pictures, SizeIs(1));
  const ReadTrack& track = movie.pictures[0];
  EXPECT_EQ(track.width, 720);
  EXPECT_EQ(track.height, isPal() ? 576 : 480);
  const AVRational shape = isPal() ? (isWide() ? AVRational{64, 45} : AVRational{16, 15})
                                   : (isWide() ? AVRational{32, 27} : AVRational{8, 9});
  EXPECT_EQ(av_cmp_q(track.sampleAspect, shape), 0);
  // The one is what is coded, the other what is shown first: libavformat reads H.264 and the containers differently.
  if (isInterlaced()) {
    EXPECT_THAT(track.fieldOrder, AnyOf(AV_FIELD_BT, AV_FIELD_BB));
  } else {
    EXPECT_EQ(track.fieldOrder, AV_FIELD_PROGRESSIVE);
  }
  const double rate = (isPal() ? 25.0 : 30000.0 / 1001) * (isInterlaced() ? 1 : 2);
  EXPECT_NEAR(av_q2d(track.frameRate), rate, 0.001);
  EXPECT_EQ(movie.metadataFor("timecode"), "01:02:03:04");
  EXPECT_EQ(movie.metadataFor("date"), "2004-07-15T13:30:45");
  EXPECT_EQ(track.color.primaries, isPal() ? AVCOL_PRI_BT470BG : AVCOL_PRI_SMPTE170M);
  // Two names of the same numbers; the JPEG decoder says the one for either.
  EXPECT_EQ(track.color.matrix, isPal() || codec() == "mjpeg" ? AVCOL_SPC_BT470BG : AVCOL_SPC_SMPTE170M);
  EXPECT_EQ(track.color.transfer, AVCOL_TRC_SMPTE170M);
  EXPECT_EQ(track.color.range, codec() == "mjpeg" ? AVCOL_RANGE_JPEG : AVCOL_RANGE_MPEG);
  const std::map<std::string, std::string> tags{{"h265", "hvc1"}, {"prores", "apcn"}, {"ffv1", "FFV1"}};
  if (const auto tag = tags.find(codec()); tag != tags.end()) {
    EXPECT_EQ(track.tag, tag->second);
  }
}

TEST_P(CompressedMovie, ShowsEachFieldOnceInItsTurnAndHasItsSoundAsLong) {
  const DecodedMovie movie = decodeMovie(path_);
  ASSERT_THAT(movie.pictures, SizeIs(isInterlaced() ? kFrames : 2 * kFrames));
  expectFields(movie);
  ASSERT_THAT(movie.sounds, SizeIs(1));
  const auto samples = test::recordedSound(clip_, 0).size() / 2;
  EXPECT_NEAR(movie.soundStarts[0], 0, 0.001);
  // AAC comes in pieces of 1024, of which the container says how much of the last one is sound.
  EXPECT_GE(movie.sounds[0].size(), samples);
  EXPECT_LT(movie.sounds[0].size(), samples + (settings_->sound == SoundCodec::aac ? 1024 : 1));
  EXPECT_NEAR(readMovie(path_).sounds.at(0).end, static_cast<double>(samples) / 48000, 0.002);
}

bool isSameAs(const AVFrame& picture, const AVFrame& tape) {
  if (picture.format != tape.format || picture.width != tape.width || picture.height != tape.height) return false;
  for (std::size_t plane = 0; plane < 3; ++plane) {
    const bool isPal = tape.format == AV_PIX_FMT_YUV420P;
    const int width = plane == 0 ? tape.width : tape.width / (isPal ? 2 : 4);
    const int height = plane != 0 && isPal ? tape.height / 2 : tape.height;
    for (int y = 0; y < height; ++y) {
      const std::uint8_t* got = picture.data[plane] + static_cast<std::ptrdiff_t>(y) * picture.linesize[plane];
      const std::uint8_t* expected = tape.data[plane] + static_cast<std::ptrdiff_t>(y) * tape.linesize[plane];
      if (std::memcmp(got, expected, static_cast<std::size_t>(width)) != 0) return false;
    }
  }
  return true;
}

class LosslessMovie : public testing::TestWithParam<std::tuple<const char*, DVSystem>> {};

INSTANTIATE_TEST_SUITE_P(Ffv1, LosslessMovie,
                         testing::Combine(testing::Values("ffv1", "ffv1-pcm"), testing::Values(kPal, kNtsc)));

TEST_P(LosslessMovie, HasEveryBitOfPicturesAndSound) {
  const ScratchFolder folder;
  const auto [preset, system] = GetParam();
  const test::Clip clip = movingClip(system, false, kFrames);
  writeCompressed(clip, folder.file("a.mkv"), presetNamed(preset));
  const DecodedMovie movie = decodeMovie(folder.file("a.mkv"));
  const auto tape = decodeClip(clip);
  ASSERT_THAT(movie.pictures, SizeIs(kFrames));
  for (std::size_t i = 0; i < kFrames; ++i) EXPECT_TRUE(isSameAs(*movie.pictures[i], *tape[i])) << "frame " << i;
  const auto recorded = test::recordedSound(clip, 0);
  ASSERT_EQ(movie.sounds.at(0).size(), recorded.size() / 2);
  for (std::size_t i = 0; i < movie.sounds[0].size(); ++i) {
    ASSERT_EQ(movie.sounds[0][i], static_cast<float>(recorded[2 * i]) / 32768.0F) << "sample " << i;
  }
}

// Where chroma lies. ProRes has it at places where the tape has it too, so that it is there what it was.

TEST(CompressedChroma, Of420FieldsStaysInTheLinesOfItsFieldAndColumn) {
  const ScratchFolder folder;
  const test::Clip clip = movingClip(kPal, false, 3);
  writeCompressed(clip, folder.file("a.mov"), presetNamed("prores"));
  const DecodedMovie movie = decodeMovie(folder.file("a.mov"));
  const auto tape = decodeClip(clip);
  ASSERT_THAT(movie.pictures, SizeIs(3));
  Psnr psnr;
  for (const int plane : {1, 2}) {
    for (int line = 8; line < 280; ++line) {
      const int field = line % 2;
      const int fieldLine = line / 2;
      for (int x = 8; x < 350; ++x) {
        psnr.add(sampleAt(*movie.pictures[1], plane, x, 2 * (2 * fieldLine) + field),
                 sampleAt(*tape[1], plane, x, line));
      }
    }
  }
  EXPECT_GT(psnr.value(), 45);
}

TEST(CompressedChroma, Of411LiesInTheColumnThatItHad) {
  const ScratchFolder folder;
  const test::Clip clip = movingClip(kNtsc, false, 3);
  writeCompressed(clip, folder.file("a.mov"), presetNamed("prores"));
  const DecodedMovie movie = decodeMovie(folder.file("a.mov"));
  const auto tape = decodeClip(clip);
  ASSERT_THAT(movie.pictures, SizeIs(3));
  Psnr psnr;
  for (const int plane : {1, 2}) {
    for (int y = 0; y < 480; ++y) {
      for (int x = 4; x < 176; ++x) {
        psnr.add(sampleAt(*movie.pictures[1], plane, 2 * x, y), sampleAt(*tape[1], plane, x, y));
      }
    }
  }
  EXPECT_GT(psnr.value(), 45);
}

TEST(CompressedChroma, IsSaidToLieWhereItDoes) {
  const ScratchFolder folder;
  writeCompressed(movingClip(kPal, false, 2), folder.file("a.mp4"), presetNamed("h264"));
  EXPECT_EQ(decodeMovie(folder.file("a.mp4")).pictures.at(0)->chroma_location, AVCHROMA_LOC_TOPLEFT);
  writeCompressed(movingClip(kNtsc, false, 2), folder.file("b.mp4"), presetNamed("h264"));
  EXPECT_EQ(decodeMovie(folder.file("b.mp4")).pictures.at(0)->chroma_location, AVCHROMA_LOC_LEFT);
}

}  // namespace
}  // namespace zq::media
