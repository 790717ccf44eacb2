// After a sequence is found the tape plays 170 frames and goes back 81, before anything is decided.

#include <gmock/gmock.h>

#include "support/recapture_fixture.h"

namespace zq::test {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class Settling : public RecaptureTest {
 protected:
  Settling() {
    device_ = selectDevice(kPlaying);
    tape_ = load({{{100, 5000}, {120, 6000}}});
  }

  /// Plays frames in the first clip of a tape that falls back to `controls` after each.
  void playDisobeyed(int frames, const platform::AVCTransportControls& controls) {
    for (int i = 0; i < frames; ++i) {
      device_->controls = controls;
      play(5000, 100);
    }
  }

  std::shared_ptr<FakeCaptureDevice> device_;
  TapeValue tape_;
};

TEST_F(Settling, Plays170FramesAndGoesBack81) {
  play(5000, 100);
  journal_.clear();
  playDisobeyed(170, kStopped);
  EXPECT_THAT(deviceCommands(), SizeIs(170));
  EXPECT_THAT(deviceCommands(), Each("device: mode 1 speed 10000"));
  journal_.clear();
  playDisobeyed(81, kStopped);
  EXPECT_THAT(deviceCommands(), SizeIs(81));
  EXPECT_THAT(deviceCommands(), Each("device: mode 0 speed -13000"));
  journal_.clear();
  playDisobeyed(1, kStopped);
  EXPECT_THAT(deviceCommands(), ElementsAre("device: mode 1 speed -7000"));
}

TEST_F(Settling, CommandsOnlyWhatTheTapeDoesNotDo) {
  play(5000, 100);
  journal_.clear();
  playTimes(170, 5000, 100);
  EXPECT_THAT(deviceCommands(), IsEmpty());
  playTimes(81, 5000, 100);
  EXPECT_THAT(deviceCommands(), ElementsAre("device: mode 1 speed -13000"));
}

TEST_F(Settling, TakesEveryReverseSpeedForGoingBack) {
  play(5000, 100);
  playTimes(170, 5000, 100);
  journal_.clear();
  playDisobeyed(81, {1, -1000});
  EXPECT_THAT(deviceCommands(), IsEmpty());
}

TEST_F(Settling, TakesOnlyNormalSpeedForPlaying) {
  play(5000, 100);
  journal_.clear();
  playDisobeyed(3, {1, 13000});
  EXPECT_THAT(deviceCommands(), SizeIs(3));
}

// Not even when all frames lie at the very start of the clip.
TEST_F(Settling, DecidesNothing) {
  controller_->startRecapture();
  play(5000, 100);
  journal_.clear();
  playTimes(251, 5000, 100);
  letPass(std::chrono::seconds(10));
  EXPECT_EQ(note(), "Searching sequence");
  EXPECT_FALSE(controller_->isRecording());
  EXPECT_THAT(linesOf({"message", "note"}), IsEmpty());
  for (const std::string& line : linesOf({"timeline"})) EXPECT_EQ(line.find("cursor"), std::string::npos) << line;
  play(5000, 100);
  letPass(std::chrono::seconds(10));
  EXPECT_TRUE(controller_->isRecording());
}

TEST_F(Settling, FollowsTheClipsMeanwhile) {
  play(5000, 100);
  play(5000, 100);
  EXPECT_EQ(controller_->currentClip(), clipOf(tape_, 0, 0));
  EXPECT_EQ(controller_->clipToBeRecaptured(), clipOf(tape_, 0, 0));
  play(6000, 120);
  EXPECT_EQ(controller_->currentClip(), clipOf(tape_, 0, 1));
}

TEST_F(Settling, BeginsAnewWhenASequenceIsFound) {
  playTimes(100, 5000, 100);
  controller_->setSequenceFound(nullptr);
  play(5000, 100);
  playTimes(251, 5000, 100);
  EXPECT_EQ(note(), "Searching sequence");
  play(5100, 104);
  EXPECT_EQ(note(), "Sequence found, camera is now searching the clip to be recaptured");
}

TEST_F(Settling, BeginsAnewByAnAlertWithItsDefaultButton) {
  settleAt(5000, 100);
  const SequenceValue sequence = controller_->sequenceFound();
  controller_->triggerAlert("", "");
  controller_->setSequenceFound(sequence);
  device_->controls = kStopped;
  journal_.clear();
  play(5100, 104);
  EXPECT_THAT(deviceCommands(), ElementsAre("device: mode 1 speed 10000"));
}

TEST_F(Settling, GoesOnAfterAnAlertWithAnotherAnswer) {
  settleAt(5000, 100);
  alerts_.answer = 0;
  controller_->triggerAlert("", "");
  play(5100, 104);
  EXPECT_EQ(note(), "Sequence found, camera is now searching the clip to be recaptured");
}

TEST_F(Settling, CountsNoFramesWithoutDateOrTimecode) {
  play(5000, 100);
  playTimes(250, 5000, 100);
  playTimes(50, std::nullopt, 100);
  playTimes(50, 5000, std::nullopt);
  play(5100, 104);
  EXPECT_EQ(note(), "Searching sequence");
  play(5100, 104);
  EXPECT_EQ(note(), "Sequence found, camera is now searching the clip to be recaptured");
}

TEST_F(Settling, HappensWithoutADeckAsWell) {
  controller_->setSelectedVideoDevice(nullptr);
  journal_.clear();
  settleAt(5000, 100);
  play(5100, 104);
  EXPECT_EQ(note(), "Sequence found, camera is now searching the clip to be recaptured");
}

}  // namespace
}  // namespace zq::test
