// Frames that are left out after a cut: the next clip waits for them to pass.

#include <gmock/gmock.h>

#include "support/capture_fixture.h"

namespace zq::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class DroppedFrames : public CaptureTest {
 protected:
  DroppedFrames() {
    startInSecondClip(1, 240);
    play(2, 249, 0);
    settings_.setIntegerForKey(ZQACNbDropFrame, 5);
  }
};

TEST_F(DroppedFrames, OpenTheNextClipFiveFramesAfterTheCut) {
  for (int i = 0; i < 8; ++i) play(10U + static_cast<unsigned>(i), 250 + i, 100);
  EXPECT_THAT(delegateCalls(), ElementsAre("delegate: did clip 2", "delegate: will"));
  EXPECT_EQ(*controller_->currentClipInfo().clipStartTimecode, timecodeOf(0, 0, 10, 5, 1));
  stopRecording();
  EXPECT_THAT(thumbnailsOf(3), ElementsAre(15U, 17U));
}

TEST_F(DroppedFrames, BelongToNoClip) {
  play(10, 250, 100);
  EXPECT_TRUE(controller_->isPrerolling());
  EXPECT_EQ(controller_->startTimecode(), timecodeOf(0, 0, 10, 5, 1));
  play(11, 251, 100);
  play(12, 254, 100);
  EXPECT_THAT(delegateCalls(), ElementsAre("delegate: did clip 2"));
  EXPECT_EQ(controller_->thumbnailsPath(), std::nullopt);
  EXPECT_EQ(controller_->moviePath(), std::nullopt);
}

TEST_F(DroppedFrames, AreLeftOutOfTheMovies) {
  for (int i = 0; i < 8; ++i) play(10U + static_cast<unsigned>(i), 250 + i, 100);
  const auto idsOf = [this](int clip) {
    std::vector<std::uint32_t> ids;
    for (const SharedBytes& frame : movieFileOutput().movies[delegate_.moviePath(clip)]) {
      ids.push_back(frameIdOf(frame.bytes()));
    }
    return ids;
  };
  EXPECT_THAT(idsOf(2), ElementsAre(1U, 2U));
  EXPECT_THAT(idsOf(3), ElementsAre(15U, 16U, 17U));
}

TEST_F(DroppedFrames, TheFrameThatOpensTheClipGivesItItsDate) {
  play(10, 250, 100);
  play(11, 255, 101);
  const ClipInfo info = controller_->currentClipInfo();
  ASSERT_NE(info.clipRecordingDate, nullptr);
  EXPECT_EQ(*info.clipRecordingDate, *dateValueAt(101));
}

// The frame is the clip's first thumbnail, and then goes through the rules for every frame, which hold it as the last.
TEST_F(DroppedFrames, AClipOfOneFrameHoldsItTwiceAsItIsAlsoItsLast) {
  play(10, 250, 100);
  play(11, 255, 100);
  stopRecording();
  EXPECT_THAT(thumbnailsOf(3), ElementsAre(11U, 11U));
}

// The date of the first frame that is left out became the current one.
TEST_F(DroppedFrames, AnotherJumpBehindThemClosesTheClipThatOpensAtOnce) {
  play(10, 250, 100);
  play(11, 255, 200);
  EXPECT_THAT(delegateCalls(), ElementsAre("delegate: did clip 2", "delegate: will", "delegate: did clip 3"));
  EXPECT_TRUE(controller_->isPrerolling());
  EXPECT_EQ(controller_->startTimecode(), timecodeOf(0, 0, 10, 10, 1));
}

TEST_F(DroppedFrames, ADateJumpAmongThemIsNotLookedAt) {
  play(10, 250, 100);
  play(11, 251, 200);
  play(12, 255, 100);
  EXPECT_THAT(delegateCalls(), ElementsAre("delegate: did clip 2", "delegate: will"));
}

TEST_F(DroppedFrames, TheClipOpensOnAFrameBeyondThePointWhenTheOneThereIsMissing) {
  play(10, 250, 100);
  play(11, 290, 100);
  EXPECT_EQ(*controller_->currentClipInfo().clipStartTimecode, timecodeOf(0, 0, 11, 15, 1));
}

TEST_F(DroppedFrames, AreCountedInTheFramesOfTheTimecodesSystem) {
  FrameRecipe recipe;
  recipe.system = DVSystem::ntsc525_60;
  recipe.timecode = timecodeAtFrame(recipe.system, 299);
  recipe.date = dateAt(100);
  deliver(bufferOf(recipe));
  EXPECT_EQ(controller_->startTimecode(), timecodeOf(0, 0, 10, 4, 2));
}

TEST_F(DroppedFrames, AreAskedForAtTheCut) {
  play(10, 250, 100);
  settings_.setIntegerForKey(ZQACNbDropFrame, 0);
  play(11, 254, 100);
  EXPECT_TRUE(controller_->isPrerolling());
  play(12, 255, 100);
  EXPECT_FALSE(controller_->isPrerolling());
  play(13, 256, 200);
  EXPECT_FALSE(controller_->isPrerolling());
  EXPECT_EQ(controller_->currentClipInfo().clipId, "clip 4");
}

TEST_F(DroppedFrames, AlsoFollowTheFirstDatedFrameOfARecording) {
  stopRecording();
  startRecording();
  journal_.clear();
  play(10, 300, 0);
  EXPECT_THAT(delegateCalls(), ElementsAre("delegate: did clip 3"));
  EXPECT_TRUE(controller_->isPrerolling());
  play(11, 305, 0);
  EXPECT_THAT(delegateCalls(), ElementsAre("delegate: did clip 3", "delegate: will"));
}

TEST_F(DroppedFrames, StoppingAmongThemTellsOfTheClosedClipAgain) {
  play(10, 250, 100);
  journal_.clear();
  stopRecording();
  EXPECT_THAT(delegateCalls(), ElementsAre("delegate: did clip 2", "delegate: end"));
  EXPECT_FALSE(controller_->isPrerolling());
}

TEST_F(DroppedFrames, WithoutAnAnswerForANewClipTheWaitingEndsAllTheSame) {
  delegate_.operations.accontrollerWillRecord = nullptr;
  play(10, 250, 100);
  EXPECT_TRUE(controller_->isPrerolling());
  play(11, 255, 100);
  EXPECT_FALSE(controller_->isPrerolling());
  EXPECT_THAT(delegateCalls(), ElementsAre("delegate: did clip 2"));
}

}  // namespace
}  // namespace zq::test
