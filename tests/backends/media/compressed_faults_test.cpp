// What compressed movies make of damaged tapes, full disks and containers that do not fit.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <tuple>

#include "backends/media/compression_measure.h"
#include "backends/media/small_disk.h"
#include "compression_choices.h"
#include "decoded_movie.h"
#include "moving_clips.h"
#include "support/dv_recording_log.h"
#include "support/scratch_folder.h"

namespace zq::media {
namespace {

using test::Clip;
using test::custom;
using test::decodeClip;
using test::decodeMovie;
using test::DVRecordingLog;
using test::FileSizeLimit;
using test::movingClip;
using test::presetNamed;
using test::sampleAt;
using test::ScratchDisk;
using test::ScratchFolder;
using test::writeCompressed;
using testing::AllOf;
using testing::HasSubstr;
using testing::SizeIs;

constexpr DVSystem kNtsc = DVSystem::ntsc525_60;
constexpr DVSystem kPal = DVSystem::pal625_50;

platform::QTSampleBuffer blankFrame(DVSystem system) {
  return test::sampleBufferOf(SharedBytes::copyOf(test::FrameBytes(frameSizeOf(system))));
}

bool isBlack(const AVFrame& picture) {
  for (const int x : {10, 300, 700}) {
    if (std::abs(sampleAt(picture, 0, x, 200) - 16) > 1 || std::abs(sampleAt(picture, 1, x / 4, 100) - 128) > 1) {
      return false;
    }
  }
  return true;
}

// Damaged frames.

class DamagedTape : public testing::TestWithParam<DVSystem> {};

INSTANTIATE_TEST_SUITE_P(EachSystem, DamagedTape, testing::Values(kPal, kNtsc));

TEST_P(DamagedTape, IsBlackBeforeItsFirstPictureAndRepeatsOneForEachThatIsLost) {
  const ScratchFolder folder;
  const Clip good = movingClip(GetParam(), false, 4);
  const auto blank = blankFrame(GetParam());
  DVRecordingLog log;
  writeCompressed({blank, blank, good[0], good[1], blank, good[3]}, folder.file("a.mkv"), presetNamed("ffv1"), &log);
  const auto movie = decodeMovie(folder.file("a.mkv"));
  ASSERT_THAT(movie.pictures, SizeIs(6));
  EXPECT_TRUE(isBlack(*movie.pictures[0]));
  EXPECT_TRUE(isBlack(*movie.pictures[1]));
  const auto tape = decodeClip(good);
  const auto lumaOf = [](const AVFrame& picture) { return sampleAt(picture, 0, 111, 77); };
  EXPECT_EQ(lumaOf(*movie.pictures[2]), lumaOf(*tape[0]));
  EXPECT_EQ(lumaOf(*movie.pictures[3]), lumaOf(*tape[1]));
  EXPECT_EQ(lumaOf(*movie.pictures[4]), lumaOf(*tape[1]));
  EXPECT_EQ(lumaOf(*movie.pictures[5]), lumaOf(*tape[3]));
  ASSERT_THAT(log.lines, SizeIs(2));
  EXPECT_THAT(log.lines[0].message, AllOf(HasSubstr(folder.file("a.mkv")), HasSubstr("frame 0")));
  EXPECT_THAT(log.lines[1].message, HasSubstr("3 of 6"));
}

TEST_P(DamagedTape, WithNoPictureAtAllIsBlackForItsLength) {
  const ScratchFolder folder;
  writeCompressed(Clip(5, blankFrame(GetParam())), folder.file("a.mp4"), presetNamed("h264"));
  const auto movie = decodeMovie(folder.file("a.mp4"));
  ASSERT_THAT(movie.pictures, SizeIs(10));
  EXPECT_TRUE(isBlack(*movie.pictures[9]));
  ASSERT_THAT(movie.sounds, SizeIs(1));
}

TEST_P(DamagedTape, WithAHeaderOfTheOtherSystemKeepsItsPlace) {
  const ScratchFolder folder;
  Clip clip = movingClip(GetParam(), false, 3);
  const auto bytes = clip[1].bytesForAllSamples.bytes();
  test::FrameBytes damaged(bytes.begin(), bytes.end());
  damaged[3] = static_cast<std::uint8_t>(damaged[3] ^ 0x80);
  clip[1] = test::sampleBufferOf(SharedBytes::copyOf(damaged));
  writeCompressed(clip, folder.file("a.mov"), presetNamed("prores"));
  EXPECT_THAT(decodeMovie(folder.file("a.mov")).pictures, SizeIs(3));
}

TEST_P(DamagedTape, OfAnyLengthHasEveryPicture) {
  for (const int frames : {1, 2, 3}) {
    for (const char* preset : {"h264", "h265", "prores", "mjpeg", "av1"}) {
      const ScratchFolder folder;
      const auto compression = presetNamed(preset);
      const auto& row = dynamic_cast<const MovieCompression&>(*compression);
      const std::string path = folder.file("a." + row.containers().front());
      writeCompressed(movingClip(GetParam(), false, frames), path, compression);
      const int perFrame = row.settings()->scan == Scan::keep ? 1 : 2;
      EXPECT_THAT(decodeMovie(path).pictures, SizeIs(perFrame * frames)) << preset;
    }
  }
}

TEST_P(DamagedTape, RefusesAFrameOfTheOtherSystemAndIsCompleteWithoutIt) {
  const ScratchFolder folder;
  auto writer = MovieWriterFactory().create(folder.file("a.mp4"), presetNamed("h264"));
  ASSERT_TRUE(writer.ok());
  for (const auto& frame : movingClip(GetParam(), false, 3)) ASSERT_TRUE(writer.value()->append(frame).ok());
  EXPECT_FALSE(writer.value()->append(blankFrame(GetParam() == kPal ? kNtsc : kPal)).ok());
  EXPECT_TRUE(writer.value()->finish().ok());
  EXPECT_THAT(decodeMovie(folder.file("a.mp4")).pictures, SizeIs(6));
}

// Full disks. What append() took is in the movie, also when the encoder had it still.

class FullDisk : public testing::TestWithParam<std::tuple<const char*, const char*>> {
 protected:
  static std::vector<std::string> texts() {
    const std::string codec = std::get<0>(GetParam());
    std::vector<std::string> result{"codec=" + codec};
    // Large files for few frames.
    if (codec == "h264" || codec == "h265") result.insert(result.end(), {"quality=4", "speed=ultrafast"});
    return result;
  }
  /// How many frames fitted.
  static std::size_t fill(const std::string& path, Status& refused) {
    auto writer = MovieWriterFactory().create(path, custom(texts()));
    EXPECT_TRUE(writer.ok()) << writer.error().text();
    const Clip clip = movingClip(kPal, false, 12);
    std::size_t written = 0;
    while (written < 600 && (refused = writer.value()->append(clip[written % clip.size()])).ok()) ++written;
    const Status finished = writer.value()->finish();
    EXPECT_TRUE(finished.ok()) << finished.error().text();
    return written;
  }
  static void expectWhole(const std::string& path, std::size_t frames) {
    const auto movie = decodeMovie(path);
    const std::size_t perFrame = codecWithKey(std::get<0>(GetParam()))->standardScan == Scan::keep ? 1 : 2;
    EXPECT_EQ(movie.pictures.size(), perFrame * frames);
    EXPECT_NEAR(static_cast<double>(movie.sounds.at(0).size()), 1920.0 * static_cast<double>(frames), 2048);
  }
};

INSTANTIATE_TEST_SUITE_P(EachContainer, FullDisk,
                         testing::Values(std::tuple("h264", "mp4"), std::tuple("h265", "mkv"),
                                         std::tuple("prores", "mov"), std::tuple("ffv1", "mkv"),
                                         std::tuple("mjpeg", "avi"), std::tuple("mjpeg", "mov")),
                         [](const auto& parameters) {
                           return std::string(std::get<0>(parameters.param)) + "_" + std::get<1>(parameters.param);
                         });

TEST_P(FullDisk, HoldsEveryFrameThatFitted) {
  const ScratchDisk disk("tmpfs", "size=4m");
  if (!disk.mounted()) GTEST_SKIP() << disk.whyNot();
  const std::string path = disk.file(std::string("a.") + std::get<1>(GetParam()));
  Status refused;
  const std::size_t written = fill(path, refused);
  ASSERT_FALSE(refused.ok()) << "the disk was not filled";
  EXPECT_THAT(refused.error().text(), AllOf(HasSubstr(path), HasSubstr("Free some space")));
  EXPECT_GT(written, 5U);
  expectWhole(path, written);
}

TEST_P(FullDisk, HoldsEveryFrameUpToTheLargestFileSize) {
  const ScratchFolder folder;
  const std::string path = folder.file(std::string("a.") + std::get<1>(GetParam()));
  Status refused;
  std::size_t written = 0;
  {
    const FileSizeLimit limit(4 << 20);
    written = fill(path, refused);
  }
  EXPECT_FALSE(refused.ok());
  expectWhole(path, written);
}

TEST_P(FullDisk, LeavesNoFileWhenNotEvenTheHeadFits) {
  const ScratchFolder folder;
  auto writer = MovieWriterFactory().create(folder.file(std::string("a.") + std::get<1>(GetParam())), custom(texts()));
  ASSERT_TRUE(writer.ok());
  {
    const FileSizeLimit limit(4096);
    EXPECT_FALSE(writer.value()->append(movingClip(kPal, false, 1)[0]).ok());
  }
  EXPECT_FALSE(writer.value()->finish().ok());
  EXPECT_TRUE(folder.isEmpty());
}

// Containers.

TEST(CompressedContainer, ThatCannotHoldACodecIsRefusedBeforeThereIsAFile) {
  const ScratchFolder folder;
  for (const CompressionPreset& preset : compressionPresets()) {
    const std::vector<std::string> possible = preset.containers();
    for (const std::string extension : {"mov", "avi", "mkv", "mp4", "dv"}) {
      const std::string path = folder.file(std::string(preset.identifier) + "." + extension);
      const auto writer = MovieWriterFactory().create(path, presetNamed(preset.identifier));
      const bool fits = std::ranges::find(possible, extension) != possible.end();
      EXPECT_EQ(writer.ok(), fits) << path;
      EXPECT_EQ(std::filesystem::exists(path), fits);
      if (fits) continue;
      EXPECT_THAT(writer.error().text(), AllOf(HasSubstr(path), HasSubstr(preset.name), HasSubstr("." + possible[0])));
    }
  }
}

TEST(CompressedContainer, OfEachPresetTakesIt) {
  for (const CompressionPreset& preset : compressionPresets()) {
    for (const std::string& extension : preset.containers()) {
      const ScratchFolder folder;
      writeCompressed(movingClip(kNtsc, false, 2), folder.file("a." + extension), presetNamed(preset.identifier));
      const std::size_t pictures = preset.settings().scan == Scan::keep ? 2 : 4;
      EXPECT_THAT(decodeMovie(folder.file("a." + extension)).pictures, SizeIs(pictures))
          << preset.identifier << " in " << extension;
    }
  }
}

TEST(CompressedContainer, WithoutFramesIsGone) {
  const ScratchFolder folder;
  auto writer = MovieWriterFactory().create(folder.file("a.mp4"), presetNamed("h264"));
  ASSERT_TRUE(writer.ok());
  EXPECT_TRUE(writer.value()->finish().ok());
  EXPECT_TRUE(folder.isEmpty());
}

// Its encoder waits for ever when it is closed without a picture and an end.
TEST(CompressedContainer, OfAv1IsGivenUpAtAnyPointWithoutAHang) {
  const ScratchFolder folder;
  auto headless = MovieWriterFactory().create(folder.file("a.mp4"), presetNamed("av1"));
  ASSERT_TRUE(headless.ok());
  {
    const FileSizeLimit limit(4096);
    EXPECT_FALSE(headless.value()->append(movingClip(kPal, false, 1)[0]).ok());
  }
  EXPECT_FALSE(headless.value()->finish().ok());
  auto dropped = MovieWriterFactory().create(folder.file("b.mp4"), presetNamed("av1"));
  ASSERT_TRUE(dropped.ok());
  EXPECT_TRUE(dropped.value()->append(movingClip(kPal, false, 1)[0]).ok());
}

TEST(CompressedContainer, IsRefusedForACompressionOfAnotherKind) {
  class Other : public platform::QTCompressionOptions {
    std::string localizedDisplayName() const override { return "Strange"; }
  };
  const ScratchFolder folder;
  const auto writer = MovieWriterFactory().create(folder.file("a.mov"), std::make_shared<Other>());
  ASSERT_FALSE(writer.ok());
  EXPECT_THAT(writer.error().text(), HasSubstr("Strange"));
  EXPECT_TRUE(folder.isEmpty());
}

TEST(CompressedContainer, OfDvIsNotMp4) {
  const ScratchFolder folder;
  const auto writer = MovieWriterFactory().create(folder.file("a.mp4"), nullptr);
  ASSERT_FALSE(writer.ok());
  EXPECT_THAT(writer.error().text(), AllOf(HasSubstr("DV as received"), HasSubstr(".mkv")));
}

// The measure.

class SteppingClock : public platform::Clock {
 public:
  platform::TimePoint now() const override { return platform::TimePoint(std::chrono::seconds(2 * ++calls_)); }
  void sleepFor(platform::Duration) override { throw std::logic_error("a measure does not sleep"); }

 private:
  mutable int calls_ = 0;
};

TEST(CompressionMeasure, ComparesTheTimeWithTheLengthOfTheFrames) {
  SteppingClock clock;
  const auto speed = measureCompression(presetNamed("mjpeg"), "mov", movingClip(kPal, false, 10), clock);
  ASSERT_TRUE(speed.ok()) << speed.error().text();
  EXPECT_DOUBLE_EQ(speed.value(), 10 / 25.0 / 2);
}

TEST(CompressionMeasure, NeedsFramesAndAContainerThatFits) {
  SteppingClock clock;
  EXPECT_FALSE(measureCompression(presetNamed("mjpeg"), "mov", {}, clock).ok());
  EXPECT_FALSE(measureCompression(presetNamed("mjpeg"), "mov", {platform::QTSampleBuffer{}}, clock).ok());
  EXPECT_FALSE(measureCompression(presetNamed("mjpeg"), "mp4", movingClip(kPal, false, 1), clock).ok());
}

}  // namespace
}  // namespace zq::media
