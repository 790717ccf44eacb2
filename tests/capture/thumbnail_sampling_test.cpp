// Which frames of a clip its thumbnails file holds.

#include <gmock/gmock.h>

#include "support/capture_fixture.h"

namespace zq::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ThumbnailSampling : public CaptureTest {
 protected:
  /// A clip from timecode 0 on, its ids the timecodes.
  void playFrames(int from, int to) {
    for (int i = from; i <= to; ++i) play(static_cast<std::uint32_t>(i), i, 0);
  }
};

struct Interval {
  int index;
  int seconds;
};

class SamplingInterval : public CaptureTest, public testing::WithParamInterface<std::tuple<Interval, DVSystem>> {};

INSTANTIATE_TEST_SUITE_P(Table, SamplingInterval,
                         testing::Combine(testing::Values(Interval{0, 1}, Interval{1, 2}, Interval{2, 5},
                                                          Interval{3, 10}, Interval{4, 20}),
                                          testing::Values(DVSystem::pal625_50, DVSystem::ntsc525_60)));

TEST_P(SamplingInterval, IsCountedInFramesOfTheTapesTimecode) {
  const auto [interval, system] = GetParam();
  settings_.setIntegerForKey(ZQACSampleInterval, interval.index);
  EXPECT_EQ(controller_->frameSampleInterval(), interval.seconds);
  const int frames = interval.seconds * timebaseOf(system);
  startRecording();
  for (const int timecode : {0, frames - 1, frames, 2 * frames - 1, 2 * frames + 3, 3 * frames + 2, 3 * frames + 3}) {
    FrameRecipe recipe;
    recipe.system = system;
    recipe.id = static_cast<std::uint32_t>(timecode);
    recipe.timecode = timecodeAtFrame(system, timecode);
    recipe.date = dateAt(0);
    deliver(bufferOf(recipe));
  }
  stopRecording();
  // The distance is from the frame that was written, not from where it was due.
  const auto id = [](int timecode) { return static_cast<std::uint32_t>(timecode); };
  EXPECT_THAT(frameIdsInFile(delegate_.thumbnailsPath(2), system),
              ElementsAre(0U, id(frames), id(2 * frames + 3), id(3 * frames + 3)));
}

TEST_F(ThumbnailSampling, AnIntervalOutsideTheTableTakesEveryFrame) {
  for (const int index : {-1, 5, 1000}) {
    settings_.setIntegerForKey(ZQACSampleInterval, index);
    EXPECT_EQ(controller_->frameSampleInterval(), 0);
  }
  startRecording();
  playFrames(0, 3);
  EXPECT_THAT(thumbnailsOf(2), ElementsAre(0U, 1U, 2U, 3U));
}

TEST_F(ThumbnailSampling, TheIntervalIsAskedForWhenAFrameIsWritten) {
  settings_.setIntegerForKey(ZQACSampleInterval, 0);
  startRecording();
  playFrames(0, 0);
  settings_.setIntegerForKey(ZQACSampleInterval, 1);
  playFrames(24, 26);
  playFrames(74, 75);
  EXPECT_THAT(thumbnailsOf(2), ElementsAre(0U, 25U, 75U));
}

TEST_F(ThumbnailSampling, OffLeavesTheFirstAndTheLastFrame) {
  settings_.setBoolForKey(ZQACFrameSampling, false);
  startRecording();
  for (int i = 0; i <= 180 * 25; i += 25) play(static_cast<std::uint32_t>(i), i, 0);
  stopRecording();
  EXPECT_THAT(thumbnailsOf(2), ElementsAre(0U, 4500U));
}

TEST_F(ThumbnailSampling, IsSwitchedOnAndOffInMidClip) {
  settings_.setIntegerForKey(ZQACSampleInterval, 0);
  settings_.setBoolForKey(ZQACFrameSampling, false);
  startRecording();
  playFrames(0, 30);
  settings_.setBoolForKey(ZQACFrameSampling, true);
  playFrames(31, 32);
  settings_.setBoolForKey(ZQACFrameSampling, false);
  playFrames(33, 60);
  stopRecording();
  EXPECT_THAT(thumbnailsOf(2), ElementsAre(0U, 31U, 60U));
}

TEST_F(ThumbnailSampling, AClipOfOneFrameHoldsItOnce) {
  startRecording();
  play(7, 100, 0);
  play(8, 101, 50);
  EXPECT_THAT(thumbnailsOf(2), ElementsAre(7U));
  stopRecording();
  EXPECT_THAT(thumbnailsOf(3), ElementsAre(8U));
}

TEST_F(ThumbnailSampling, ALastFrameThatWasASampleIsNotWrittenTwice) {
  settings_.setIntegerForKey(ZQACSampleInterval, 0);
  startRecording();
  playFrames(0, 25);
  stopRecording();
  EXPECT_THAT(thumbnailsOf(2), ElementsAre(0U, 25U));
}

TEST_F(ThumbnailSampling, TheLastFrameIsAppendedAtTheCut) {
  startRecording();
  playFrames(0, 10);
  play(99, 11, 50);
  EXPECT_THAT(thumbnailsOf(2), ElementsAre(0U, 10U));
}

TEST_F(ThumbnailSampling, ATimecodeThatGoesBackTakesNoSampleUntilItIsDueAgain) {
  settings_.setIntegerForKey(ZQACSampleInterval, 0);
  startRecording();
  playFrames(100, 125);
  playFrames(0, 20);
  playFrames(150, 150);
  EXPECT_THAT(thumbnailsOf(2), ElementsAre(100U, 125U, 150U));
}

// Without a start timecode, each frame counts as the first of its clip.
TEST_F(ThumbnailSampling, OnATapeWithoutTimecodesEveryFrameIsWritten) {
  startRecording();
  for (std::uint32_t id = 1; id <= 4; ++id) play(id, std::nullopt, 0);
  stopRecording();
  EXPECT_THAT(thumbnailsOf(2), ElementsAre(1U, 2U, 3U, 4U));
  EXPECT_THAT(movieFileOutput().movies, IsEmpty());
}

TEST_F(ThumbnailSampling, AFrameThatLostItsTimecodeCountsAsZeroAndIsNotDue) {
  settings_.setIntegerForKey(ZQACSampleInterval, 0);
  startRecording();
  playFrames(0, 24);
  play(1000, std::nullopt, 0);
  playFrames(26, 26);
  EXPECT_THAT(thumbnailsOf(2), ElementsAre(0U, 26U));
}

// The empty clip of a second recording is closed with what the first one held last.
TEST_F(ThumbnailSampling, TheHeldFrameOutlivesTheRecording) {
  startRecording();
  playFrames(0, 3);
  stopRecording();
  EXPECT_THAT(thumbnailsOf(2), ElementsAre(0U, 3U));
  startRecording();
  play(50, 4, 0);
  EXPECT_THAT(thumbnailsOf(3), ElementsAre(3U));
  stopRecording();
  EXPECT_THAT(thumbnailsOf(4), ElementsAre(50U));
}

TEST_F(ThumbnailSampling, AnotherThumbnailsPathClosesTheFileOfTheOldOne) {
  startRecording();
  playFrames(0, 3);
  controller_->setThumbnailsPath(scratch_.file("other.thumbs"));
  EXPECT_THAT(thumbnailsOf(2), ElementsAre(0U, 3U));
  EXPECT_TRUE(std::filesystem::exists(scratch_.file("other.thumbs")));
}

TEST_F(ThumbnailSampling, TheSameThumbnailsPathGoesOn) {
  startRecording();
  playFrames(0, 3);
  controller_->setThumbnailsPath(delegate_.thumbnailsPath(2));
  EXPECT_THAT(thumbnailsOf(2), ElementsAre(0U));
  playFrames(50, 50);
  EXPECT_THAT(thumbnailsOf(2), ElementsAre(0U, 50U));
}

TEST_F(ThumbnailSampling, NtscAndPalFramesAreStoredAsReceived) {
  startRecording();
  FrameRecipe recipe;
  recipe.system = DVSystem::ntsc525_60;
  recipe.timecode = timecodeAtFrame(recipe.system, 1);
  recipe.date = dateAt(0);
  const FrameBytes bytes = frameBytesOf(recipe);
  deliver(bufferOf(recipe));
  EXPECT_EQ(readFile(delegate_.thumbnailsPath(2)), bytes);
}

TEST_F(ThumbnailSampling, APathThatCannotBeOpenedStopsNothing) {
  delegate_.answer = [this](int clip) {
    return ClipPaths{std::nullopt, delegate_.moviePath(clip), scratch_.file("no-such-folder/clip.thumbs")};
  };
  startRecording();
  playFrames(0, 60);
  stopRecording();
  EXPECT_FALSE(std::filesystem::exists(scratch_.file("no-such-folder")));
  EXPECT_EQ(movieFileOutput().movies[delegate_.moviePath(2)].size(), 61U);
  EXPECT_THAT(alerts_.shown, IsEmpty());
}

}  // namespace
}  // namespace zq::test
