// The watchdog that ends a recording when frames stop arriving.

#include <gmock/gmock.h>

#include "support/capture_fixture.h"

namespace zq::test {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

class EndOfTape : public CaptureTest {
 protected:
  void watchFor(int seconds) {
    settings_.setBoolForKey(ZQACDetectEndTape, true);
    settings_.setIntegerForKey(ZQACDetectEndTapeSecond, seconds);
  }
  /// Starts a recording and plays one frame.
  void recordAFrame() {
    startRecording();
    play(1, 100, 0);
    journal_.clear();
  }
};

TEST_F(EndOfTape, IsNotWatchedForByDefault) {
  recordAFrame();
  letPass(1h);
  EXPECT_TRUE(controller_->isRecording());
}

TEST_F(EndOfTape, EndsTheRecordingWhenNoFrameComesForItsSeconds) {
  watchFor(3);
  recordAFrame();
  letPass(2999ms);
  EXPECT_TRUE(controller_->isRecording());
  letPass(1ms);
  EXPECT_FALSE(controller_->isRecording());
  EXPECT_THAT(delegateCalls(), ElementsAre("delegate: did clip 2", "delegate: end"));
}

TEST_F(EndOfTape, IsStartedAnewByEachFrame) {
  watchFor(1);
  recordAFrame();
  for (int i = 1; i <= 10; ++i) {
    letPass(900ms);
    play(1, 100 + i, 0);
  }
  letPass(900ms);
  EXPECT_TRUE(controller_->isRecording());
  letPass(101ms);
  EXPECT_FALSE(controller_->isRecording());
}

// Its alert is shown for longer than the old watch had to go.
TEST_F(EndOfTape, IsStartedAnewByAFrameThatIsNotDVBeforeItEndsTheRecording) {
  watchFor(1);
  recordAFrame();
  letPass(900ms);
  bool stillRecording = false;
  alerts_.whileShown = [&] {
    letPass(500ms);
    stillRecording = controller_->isRecording();
  };
  deliver(bufferOfLength(119999));
  EXPECT_TRUE(stillRecording);
  EXPECT_FALSE(controller_->isRecording());
}

TEST_F(EndOfTape, IsWatchedForOnceTheMainThreadGetsToIt) {
  watchFor(1);
  recordAFrame();
  runtime_.clock().sleepFor(600ms);
  letPass(900ms);
  EXPECT_TRUE(controller_->isRecording());
  letPass(101ms);
  EXPECT_FALSE(controller_->isRecording());
}

TEST_F(EndOfTape, IsStartedAnewByFramesThatAreLeftOut) {
  watchFor(1);
  settings_.setIntegerForKey(ZQACNbDropFrame, 100);
  recordAFrame();
  ASSERT_TRUE(controller_->isPrerolling());
  for (int i = 1; i <= 3; ++i) {
    letPass(900ms);
    play(1, 100 + i, 0);
  }
  EXPECT_TRUE(controller_->isRecording());
}

TEST_F(EndOfTape, IsNotWatchedForBeforeTheFirstFrame) {
  watchFor(1);
  startRecording();
  letPass(1h);
  EXPECT_TRUE(controller_->isRecording());
}

TEST_F(EndOfTape, IsNotWatchedForWhileNothingIsRecorded) {
  watchFor(1);
  play(1, 100, 0);
  startRecording();
  letPass(10s);
  EXPECT_TRUE(controller_->isRecording());
}

TEST_F(EndOfTape, StoppingTheRecordingStopsTheWatch) {
  watchFor(1);
  recordAFrame();
  letPass(1ms);
  stopRecording();
  settings_.setBoolForKey(ZQACDetectEndTape, false);
  startRecording();
  letPass(10s);
  EXPECT_TRUE(controller_->isRecording());
}

// The last frame's request may still be under way to the main thread when the recording ends there.
TEST_F(EndOfTape, ARequestThatArrivesAfterTheStopIsPassedOver) {
  watchFor(1);
  recordAFrame();
  stopRecording();
  journal_.clear();
  letPass(10s);
  EXPECT_THAT(journal_.lines(), IsEmpty());
}

TEST_F(EndOfTape, ItsSecondsAreReadAtEachFrame) {
  watchFor(1);
  recordAFrame();
  letPass(500ms);
  settings_.setIntegerForKey(ZQACDetectEndTapeSecond, 5);
  play(2, 101, 0);
  letPass(4900ms);
  EXPECT_TRUE(controller_->isRecording());
  letPass(101ms);
  EXPECT_FALSE(controller_->isRecording());
}

TEST_F(EndOfTape, SwitchedOffInMidRecordingLeavesTheRunningWatch) {
  watchFor(1);
  recordAFrame();
  letPass(500ms);
  settings_.setBoolForKey(ZQACDetectEndTape, false);
  play(2, 101, 0);
  letPass(501ms);
  EXPECT_FALSE(controller_->isRecording());
}

TEST_F(EndOfTape, TheWatchMayBeLaunchedByHand) {
  watchFor(2);
  startRecording();
  controller_->launchStopCaptureTimer();
  letPass(1s);
  controller_->launchStopCaptureTimer();
  letPass(1500ms);
  EXPECT_TRUE(controller_->isRecording());
  letPass(501ms);
  EXPECT_FALSE(controller_->isRecording());
}

TEST_F(EndOfTape, StopCaptureEndsTheRecording) {
  recordAFrame();
  controller_->stopCapture();
  EXPECT_FALSE(controller_->isRecording());
  EXPECT_THAT(delegateCalls(), ElementsAre("delegate: did clip 2", "delegate: end"));
}

TEST_F(EndOfTape, StopCaptureByHandLeavesNoWatchBehind) {
  watchFor(1);
  recordAFrame();
  letPass(1ms);
  controller_->stopCapture();
  settings_.setBoolForKey(ZQACDetectEndTape, false);
  startRecording();
  letPass(10s);
  EXPECT_TRUE(controller_->isRecording());
}

TEST_F(EndOfTape, MayBeStoppedFromTheDeliveryThread) {
  watchFor(1);
  recordAFrame();
  letPass(1ms);
  const auto delivery = runtime_.startThread("delivery", [this] { controller_->setRecording(false); });
  delivery->join();
  settings_.setBoolForKey(ZQACDetectEndTape, false);
  startRecording();
  letPass(10s);
  EXPECT_TRUE(controller_->isRecording());
}

TEST_F(EndOfTape, AControllerThatGoesTakesItsWatchAlong) {
  watchFor(1);
  recordAFrame();
  play(2, 101, 0);  // asks for the watch once more, which is still to be done when the controller is gone
  controller_.reset();
  journal_.clear();
  letPass(10s);
  EXPECT_THAT(delegateCalls(), IsEmpty());
}

}  // namespace
}  // namespace zq::test
