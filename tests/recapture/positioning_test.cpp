// Bringing a tape to the start of the clip that is looked for.

#include "recapture/positioning.h"

#include <gmock/gmock.h>

#include "support/recapture_fixture.h"

namespace zq::test {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kSearching[] = "Sequence found, camera is now searching the clip to be recaptured";

/// Settled in a sequence of three clips of 10 s, of which the middle one is looked for: 00:03:20:00 to 00:03:29:24,
/// recorded from second 120 on. The tape goes back.
class Positioning : public RecaptureTest {
 protected:
  Positioning() {
    device_ = selectDevice(kPlaying);
    tape_ = load({{{100, 4000, 250, false}, {120, 5000}, {140, 6000, 250, false}}});
    controller_->startRecapture();
    settleAt(4000, 100);
  }

  /// What the deck is told at a frame at which it does this.
  Lines commandsAt(int timecode, int date, const platform::AVCTransportControls& controls) {
    device_->controls = controls;
    journal_.clear();
    play(timecode, date);
    return deviceCommands();
  }
  bool isRecordingSetUp() {
    letPass(10s);
    return controller_->isRecording();
  }

  std::shared_ptr<FakeCaptureDevice> device_;
  TapeValue tape_;
};

TEST_F(Positioning, GoesForwardBeforeTheClip) {
  EXPECT_THAT(commandsAt(4000, 100, kPlaying), ElementsAre("device: mode 1 speed 13000"));
  EXPECT_EQ(note(), kSearching);
}

TEST_F(Positioning, KeepsTheModeOfTheDeckWhenItWinds) {
  EXPECT_THAT(commandsAt(4000, 100, kStopped), ElementsAre("device: mode 0 speed 13000"));
}

TEST_F(Positioning, GoesBackBehindTheClip) {
  EXPECT_THAT(commandsAt(6000, 140, kPlaying), ElementsAre("device: mode 1 speed -13000"));
  EXPECT_EQ(note(), kSearching);
}

TEST_F(Positioning, LeavesADeckThatGoesThatWayAlready) {
  EXPECT_THAT(commandsAt(4000, 100, {1, 16000}), IsEmpty());
  EXPECT_THAT(commandsAt(6000, 140, {1, -1000}), IsEmpty());
}

TEST_F(Positioning, CommandsAnActionOnceAndAgainAfterAStop) {
  EXPECT_THAT(commandsAt(4000, 100, kPlaying), ElementsAre("device: mode 1 speed 13000"));
  EXPECT_THAT(commandsAt(4001, 100, kPlaying), IsEmpty());
  controller_->stopPlaying();
  EXPECT_THAT(commandsAt(4002, 100, kPlaying), ElementsAre("device: mode 1 speed 13000"));
}

TEST_F(Positioning, AStopOfADeckThatCannotBeControlledIsNone) {
  commandsAt(4000, 100, kPlaying);
  device_->readOnly = true;
  controller_->stopPlaying();
  device_->readOnly = false;
  EXPECT_THAT(commandsAt(4001, 100, kPlaying), IsEmpty());
}

TEST_F(Positioning, TurnsRoundWhereTheClipWasPassed) {
  commandsAt(4000, 100, kPlaying);
  EXPECT_THAT(commandsAt(6000, 140, {1, 13000}), ElementsAre("device: mode 1 speed -13000"));
  EXPECT_THAT(commandsAt(4000, 100, {1, -13000}), ElementsAre("device: mode 1 speed 13000"));
}

TEST_F(Positioning, MovesTheCursor) {
  play(4100, 104);
  EXPECT_THAT(linesOf({"timeline"}),
              ElementsAre("timeline: cursor 00:02:44:00", "timeline: cursor 2004-07-15T13:01:44"));
}

TEST_F(Positioning, SlowsDown99FramesBeforeTheEndOfTheClipBefore) {
  EXPECT_THAT(commandsAt(4000, 100, {1, 13000}), IsEmpty());
  EXPECT_THAT(commandsAt(4149, 105, {1, 13000}), IsEmpty());  // 100 frames before 4249
  EXPECT_THAT(commandsAt(4150, 106, {1, 13000}), ElementsAre("device: mode 1 speed 10000"));
  EXPECT_THAT(commandsAt(4151, 106, kPlaying), ElementsAre("device: mode 1 speed 10000"));
  EXPECT_THAT(commandsAt(4260, 110, kPlaying), ElementsAre("device: mode 1 speed 10000"));
}

TEST_F(Positioning, SlowsDownAfterItWasSentForward) {
  EXPECT_THAT(commandsAt(4200, 108, kPlaying), ElementsAre("device: mode 1 speed 13000", "device: mode 1 speed 10000"));
}

TEST_F(Positioning, DoesNotSlowDownInOtherClips) {
  commandsAt(6000, 140, kPlaying);
  EXPECT_THAT(commandsAt(6249, 149, {1, -13000}), IsEmpty());
}

TEST_F(Positioning, PlaysAFastForwardingDeckInTheClip) {
  device_->controls = {1, 13000};
  journal_.clear();
  play(5100, 124);
  EXPECT_THAT(linesOf({"device", "session", "note"}),
              ElementsAre("device: mode 1 speed 10000", "session: start",
                          "note: Clip found, camera will start the recapture", std::string("note: ") + kSearching));
}

TEST_F(Positioning, AdjustsInTheClip) {
  EXPECT_THAT(commandsAt(5099, 123, kPlaying), ElementsAre("device: mode 1 speed -10000"));
  EXPECT_THAT(commandsAt(5031, 121, {1, -10000}), ElementsAre("device: mode 1 speed -10000"));
  EXPECT_THAT(commandsAt(5030, 121, {1, -10000}), ElementsAre("device: mode 1 speed -7000"));
  EXPECT_EQ(note(), kSearching);
  EXPECT_FALSE(isRecordingSetUp());
}

TEST_F(Positioning, IsThereInTheFirstSecondOfTheClip) {
  EXPECT_THAT(commandsAt(5024, 120, {1, -7000}), ElementsAre("device: mode 1 speed -7000"));
  EXPECT_EQ(note(), "Clip found, camera will start recapture");
  EXPECT_TRUE(isRecordingSetUp());
}

TEST_F(Positioning, IsThereAtTheStartTimecodeWhateverTheDate) {
  play(5000, 125);
  EXPECT_EQ(note(), "Clip found, camera will start recapture");
  EXPECT_TRUE(isRecordingSetUp());
}

TEST_F(Positioning, IsThereBeforeTheStartDateOfTheClipItKeptAsCurrent) {
  commandsAt(5024, 121, kPlaying);
  EXPECT_EQ(controller_->currentClip(), clipOf(tape_, 0, 1));
  play(4990, 119);  // between the clips
  EXPECT_EQ(note(), "Clip found, camera will start recapture");
  EXPECT_TRUE(isRecordingSetUp());
}

TEST_F(Positioning, IsNotThereBetweenTheClipsWhenItComesFromBefore) {
  play(4249, 109);
  play(4990, 119);
  EXPECT_EQ(controller_->currentClip(), clipOf(tape_, 0, 0));
  EXPECT_EQ(note(), kSearching);
}

TEST_F(Positioning, ForgetsTheLastActionWhenTheRecordingIsRequested) {
  commandsAt(6000, 140, kPlaying);
  play(5000, 120);
  EXPECT_THAT(commandsAt(6000, 140, kPlaying), ElementsAre("device: mode 1 speed -13000"));
}

TEST_F(Positioning, ComparesWithTheClipThatIsLookedForNotWithItsTimecode) {
  // Timecodes that begin again at zero do not matter, dates do.
  EXPECT_THAT(commandsAt(0, 140, kPlaying), ElementsAre("device: mode 1 speed -13000"));
}

TEST_F(Positioning, WithoutATransportStillFindsTheClip) {
  device_->readOnly = true;
  EXPECT_THAT(commandsAt(5000, 120, kPlaying), IsEmpty());
  EXPECT_EQ(note(), "Clip found, camera will start recapture");
  EXPECT_THAT(linesOf({"note"}), ElementsAre("note: Clip found, camera will start recapture"));
}

TEST(DeviceNextAction, ComparesDates) {
  const auto clip = std::make_shared<ZQACClip>(recordOf({120, 5000}));
  EXPECT_EQ(deviceNextAction(dateValueAt(119), clip), DeviceAction::forward);
  EXPECT_EQ(deviceNextAction(dateValueAt(120), clip), DeviceAction::nothing);
  EXPECT_EQ(deviceNextAction(dateValueAt(121), clip), DeviceAction::back);
  EXPECT_EQ(deviceNextAction(dateValueAt(121), nullptr), DeviceAction::nothing);
  EXPECT_EQ(deviceNextAction(nullptr, clip), DeviceAction::nothing);
}

}  // namespace
}  // namespace zq::test
