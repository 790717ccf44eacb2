// The states of the recording switch, and every way from one to another:
//
//   state       isRecording  isPrerolling  clip
//   idle        no           no            none
//   rewinding   no           yes           none   (only while setRecording() blocks; see preroll_test)
//   prerolling  yes          yes           none
//   in clip     yes          no            open

#include <gmock/gmock.h>

#include "support/capture_fixture.h"

namespace zq::test {
namespace {

class RecordingStates : public CaptureTest {
 protected:
  enum class State { idle, prerolling, inClip };

  State state() const {
    if (!controller_->isRecording()) return State::idle;
    return controller_->isPrerolling() ? State::prerolling : State::inClip;
  }

  void enterInClip() {
    startRecording();
    play(1, 100, 0);
    ASSERT_EQ(state(), State::inClip);
  }
  void enterPrerollingAfterACut() {
    enterInClip();
    settings_.setIntegerForKey(ZQACNbDropFrame, 5);
    play(2, 101, 50);
    ASSERT_EQ(state(), State::prerolling);
  }
  void enterPrerollingFromAPausedTape() {
    selectDevice(platform::AVCTransportControls{1, 0});
    play(1, 100, 0);
    startRecording();
    ASSERT_EQ(state(), State::prerolling);
  }
};

TEST_F(RecordingStates, IdleAtFirst) {
  EXPECT_EQ(state(), State::idle);
}

TEST_F(RecordingStates, IdleToInClipBySwitchingOn) {
  startRecording();
  EXPECT_EQ(state(), State::inClip);
}

TEST_F(RecordingStates, IdleToPrerollingBySwitchingOnWithAPausedTape) {
  enterPrerollingFromAPausedTape();
}

TEST_F(RecordingStates, IdleStaysIdleByFrames) {
  play(1, 100, 0);
  play(2, 101, 50);
  EXPECT_EQ(state(), State::idle);
}

TEST_F(RecordingStates, PrerollingToInClipByTheFirstFrameAtTheStartPoint) {
  enterPrerollingAfterACut();
  play(3, 105, 50);
  EXPECT_EQ(state(), State::prerolling);
  play(4, 106, 50);
  EXPECT_EQ(state(), State::inClip);
}

TEST_F(RecordingStates, PrerollingToIdleBySwitchingOff) {
  enterPrerollingAfterACut();
  stopRecording();
  EXPECT_EQ(state(), State::idle);
}

TEST_F(RecordingStates, PrerollingToInClipBySwitchingOnAgain) {
  enterPrerollingFromAPausedTape();
  startRecording();
  EXPECT_EQ(state(), State::inClip);
}

TEST_F(RecordingStates, PrerollingToIdleByAFrameThatIsNotDV) {
  enterPrerollingAfterACut();
  deliver(bufferOfLength(119999));
  EXPECT_EQ(state(), State::idle);
}

TEST_F(RecordingStates, InClipToInClipByADateBreak) {
  enterInClip();
  play(2, 101, 50);
  EXPECT_EQ(state(), State::inClip);
  EXPECT_EQ(delegate_.clips, 3);
}

TEST_F(RecordingStates, InClipToPrerollingByADateBreakWithFramesToLeaveOut) {
  enterPrerollingAfterACut();
}

TEST_F(RecordingStates, InClipToInClipByAFileChange) {
  settings_.setBoolForKey(ZQACDetectScene, false);
  enterInClip();
  movieFileOutput().demandOtherFile();
  EXPECT_EQ(state(), State::inClip);
  EXPECT_EQ(delegate_.clips, 2);
}

TEST_F(RecordingStates, InClipToIdleBySwitchingOff) {
  enterInClip();
  stopRecording();
  EXPECT_EQ(state(), State::idle);
}

TEST_F(RecordingStates, InClipToIdleByAFrameThatIsNotDV) {
  enterInClip();
  deliver(bufferOfLength(144001));
  EXPECT_EQ(state(), State::idle);
}

TEST_F(RecordingStates, InClipToIdleByTheWatchdog) {
  settings_.setBoolForKey(ZQACDetectEndTape, true);
  enterInClip();
  letPass(std::chrono::seconds(2));
  EXPECT_EQ(state(), State::idle);
}

TEST_F(RecordingStates, InClipToIdleByAskingForATapeThatDoesNotPlay) {
  const auto device = selectDevice(platform::AVCTransportControls{1, 10000});
  enterInClip();
  device->controls = {0, 0};
  EXPECT_FALSE(controller_->isDevicePlaying());
  EXPECT_EQ(state(), State::idle);
}

// The alert waits for the user, on whom the main thread may depend: nothing is held meanwhile.
TEST_F(RecordingStates, WhileTheAlertIsShownTheSwitchIsStillOnAndMayBeUsed) {
  enterInClip();
  alerts_.whileShown = [this] {
    EXPECT_EQ(state(), State::inClip);
    const auto user = runtime_.startThread("user", [this] { controller_->setRecording(false); });
    user->join();
  };
  deliver(bufferOfLength(119999));
  EXPECT_EQ(state(), State::idle);
}

}  // namespace
}  // namespace zq::test
