// The record button: a session starts, is refused, or is cancelled.

#include <gmock/gmock.h>

#include "support/recapture_fixture.h"

namespace zq::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Alert = RecordingAlerts::Alert;

const std::vector<std::vector<ClipPlan>> kOneClip{{{100, 5000}}};

class RecaptureStart : public RecaptureTest {
 protected:
  /// What the main thread is told.
  void runMainTasks() { letPass(platform::Duration(0)); }
};

TEST_F(RecaptureStart, WithoutADeviceAlertsAndIsTakenBack) {
  load(kOneClip);
  controller_->startRecapture();
  EXPECT_THAT(alerts_.shown,
              ElementsAre(Alert{"There is no selected device to recapture!", "Please select a device."}));
  EXPECT_THAT(journal_.lines(),
              ElementsAre("message: show", "view: add panel", "delegate: did start", "timeline: mouse off",
                          "alert: There is no selected device to recapture!", "message: hide", "delegate: did end",
                          "button: off", "timeline: no cursor", "timeline: refresh", "timeline: mouse on"));
  EXPECT_FALSE(controller_->isStart());
}

TEST_F(RecaptureStart, ReportsTheEndOfASessionOnTheMainThreadLater) {
  controller_->startRecapture();
  journal_.clear();
  runMainTasks();
  EXPECT_THAT(journal_.lines(), ElementsAre("note: END", "delegate: end record of 0"));
}

TEST_F(RecaptureStart, IsNotTakenBackByAnotherAnswerOfTheAlert) {
  alerts_.answer = 0;
  const TapeValue tape = load(kOneClip);
  controller_->setSequenceFound(tape->sequenceAtIndex(0));
  controller_->startRecapture();
  runMainTasks();
  EXPECT_THAT(journal_.lines(), ElementsAre("message: show", "view: add panel", "delegate: did start",
                                            "timeline: mouse off", "alert: There is no selected device to recapture!"));
  EXPECT_TRUE(controller_->isStart());
  EXPECT_EQ(controller_->sequenceFound(), tape->sequenceAtIndex(0));
}

TEST_F(RecaptureStart, WithoutClipsStopsTheTapeAndAlerts) {
  selectDevice(kPlaying);
  load({{{0, 0, 250, false}}});
  controller_->startRecapture();
  EXPECT_THAT(alerts_.shown,
              ElementsAre(Alert{"There is no clip to be recaptured in current tape!", "Please select another tape."}));
  EXPECT_THAT(
      linesOf({"device", "session", "alert", "delegate", "message"}),
      ElementsAre("message: show", "delegate: did start", "message: show", "device: mode 0 speed 0",
                  "alert: There is no clip to be recaptured in current tape!", "message: hide", "delegate: did end"));
}

TEST_F(RecaptureStart, WithoutATapeIsRefusedAsOneWithoutClips) {
  selectDevice(kPlaying);
  controller_->startRecapture();
  EXPECT_EQ(alerts_.shown.at(0).message, "There is no clip to be recaptured in current tape!");
}

TEST_F(RecaptureStart, InAutomaticModeStopsAndRewindsTheTape) {
  selectDevice(kPlaying);
  load(kOneClip);
  controller_->startRecapture();
  EXPECT_THAT(journal_.lines(),
              ElementsAre("message: show", "view: add panel", "delegate: did start", "timeline: mouse off",
                          "message: show", "note: Recapture is started in automatic mode", "device: mode 0 speed 0",
                          "device: mode 0 speed -13000"));
  EXPECT_TRUE(controller_->isStart());
}

TEST_F(RecaptureStart, InAnyOtherModePlaysTheTape) {
  for (const int tag : {1, 2, -1}) {
    makeController();
    selectDevice(kStopped);
    load(kOneClip);
    controller_->setRecaptureModeTag(tag);
    controller_->startRecapture();
    EXPECT_THAT(linesOf({"note", "device", "session"}), ElementsAre("note: Recapture is started in manuel mode",
                                                                    "device: mode 1 speed 10000", "session: start"));
  }
}

TEST_F(RecaptureStart, PlaysWhenTheRewindHasStopped) {
  const auto device = selectDevice(kPlaying);
  load(kOneClip);
  start();
  controller_->startRecapture();  // cancelled: nobody waits for the rewind any more
  controller_->startRecapture();
  journal_.clear();
  device->setAVCTransportControls(kStopped);
  EXPECT_THAT(
      linesOf({"note", "device", "session"}),
      ElementsAre("device: mode 0 speed 0", "note: camera is searching right sequence of the clip being recaptured",
                  "device: mode 1 speed 10000", "session: start"));
  EXPECT_EQ(controller_->sequenceFound(), nullptr);
}

TEST_F(RecaptureStart, PlaysOnceOnlyWhenTheRewindHasStopped) {
  const auto device = selectDevice(kPlaying);
  load(kOneClip);
  controller_->startRecapture();
  device->setAVCTransportControls(kStopped);
  journal_.clear();
  device->setAVCTransportControls(kStopped);
  EXPECT_THAT(deviceCommands(), ElementsAre("device: mode 0 speed 0"));
}

TEST_F(RecaptureStart, WaitsOnForARewindThatHasNotStopped) {
  const auto device = selectDevice(kPlaying);
  load(kOneClip);
  controller_->startRecapture();
  journal_.clear();
  device->setAVCTransportControls({0, -16000});
  EXPECT_THAT(deviceCommands(), ElementsAre("device: mode 0 speed -16000"));
  device->controls = std::nullopt;
  notifications_.post({platform::QTCaptureDeviceAttributeDidChangeNotification, device.get(), ""});
  EXPECT_EQ(note(), "Recapture is started in automatic mode");
  device->setAVCTransportControls(kStopped);
  EXPECT_EQ(note(), "camera is searching right sequence of the clip being recaptured");
}

TEST_F(RecaptureStart, WaitsForNoRewindWhenTheRecaptureIsDone) {
  const auto device = selectDevice(kPlaying);
  load(kOneClip);
  controller_->startRecapture();
  controller_->setIsRecaptureDone(true);
  EXPECT_EQ(note(), "Recapture is started in automatic mode");
  controller_->setIsRecaptureDone(false);
  device->setAVCTransportControls(kStopped);
  EXPECT_EQ(note(), "camera is searching right sequence of the clip being recaptured");
}

TEST_F(RecaptureStart, InManualModeWaitsForNoRewind) {
  const auto device = selectDevice(kPlaying);
  load(kOneClip);
  controller_->setRecaptureModeTag(1);
  controller_->startRecapture();
  device->setAVCTransportControls(kStopped);
  EXPECT_EQ(note(), "Recapture is started in manuel mode");
}

TEST_F(RecaptureStart, PressedAgainCancels) {
  selectDevice(kPlaying);
  load(kOneClip);
  start();
  controller_->startRecapture();
  EXPECT_THAT(alerts_.shown,
              ElementsAre(Alert{"Recapture has been canceled!", "You have lost the recapture of the last clip."}));
  // The delegate is told twice: by the button and by the answer of the alert.
  EXPECT_THAT(journal_.lines(),
              ElementsAre("message: show", "view: add panel", "delegate: did end", "timeline: mouse on",
                          "session: stop", "device: mode 0 speed 0", "note: ", "alert: Recapture has been canceled!",
                          "message: hide", "delegate: did end", "button: off", "timeline: no cursor",
                          "timeline: refresh", "timeline: mouse on"));
  runMainTasks();
  EXPECT_EQ(note(), "END");
}

TEST_F(RecaptureStart, CancelledDeletesTheMovieThatWasBegun) {
  selectDevice(kPlaying);
  load(kOneClip);
  start();
  controller_->setMoviePath("/movies/1.mov");
  controller_->startRecapture();
  EXPECT_THAT(linesOf({"session", "device", "files", "note", "alert"}),
              ElementsAre("session: stop", "device: mode 0 speed 0", "files: remove /movies/1.mov",
                          "note: ", "alert: Recapture has been canceled!"));
}

TEST_F(RecaptureStart, CancelledSaysNothingOfAMovieThatCannotBeDeleted) {
  selectDevice(kPlaying);
  load(kOneClip);
  start();
  files_.removeError = Error{"Cannot delete it", ""};
  controller_->setMoviePath("/movies/1.mov");
  controller_->startRecapture();
  EXPECT_EQ(alerts_.shown.size(), 1U);
  EXPECT_THAT(log_.messages(), IsEmpty());
}

TEST_F(RecaptureStart, CancelledWithAnotherAnswerKeepsTheSequence) {
  selectDevice(kPlaying);
  const TapeValue tape = load(kOneClip);
  start();
  controller_->setSequenceFound(tape->sequenceAtIndex(0));
  alerts_.answer = 0;
  controller_->startRecapture();
  EXPECT_FALSE(controller_->isStart());
  EXPECT_EQ(controller_->sequenceFound(), tape->sequenceAtIndex(0));
  EXPECT_THAT(linesOf({"delegate", "button"}), ElementsAre("delegate: did end"));
}

TEST_F(RecaptureStart, ShowsAlertsInTheUsersLanguage) {
  strings_.texts["There is no selected device to recapture!"] = "Kein Gerät gewählt!";
  strings_.texts["Please select a device."] = "Bitte ein Gerät wählen.";
  controller_->startRecapture();
  EXPECT_THAT(alerts_.shown, ElementsAre(Alert{"Kein Gerät gewählt!", "Bitte ein Gerät wählen."}));
}

TEST_F(RecaptureStart, LetsOtherThreadsAskWhileAnAlertIsShown) {
  bool asked = false;
  std::unique_ptr<platform::Thread> other;
  alerts_.whileShown = [&] {
    other = runtime_.startThread("other", [&] { asked = controller_->isStart(); });
    other->join();
  };
  controller_->startRecapture();
  EXPECT_TRUE(asked);
}

TEST_F(RecaptureStart, NeedsNoOperationOfTheDelegate) {
  delegate_.operations = {};
  controller_->startRecapture();
  runMainTasks();
  EXPECT_THAT(linesOf({"delegate"}), IsEmpty());
  EXPECT_EQ(note(), "END");
}

TEST_F(RecaptureStart, NeedsNoDelegate) {
  controller_->setDelegate(nullptr);
  controller_->startRecapture();
  runMainTasks();
  EXPECT_THAT(linesOf({"delegate"}), IsEmpty());
  EXPECT_EQ(note(), "END");
}

TEST_F(RecaptureStart, WhatIsPostedForAControllerThatIsGoneIsNotRun) {
  controller_->startRecapture();
  controller_.reset();
  journal_.clear();
  runMainTasks();
  EXPECT_THAT(journal_.lines(), IsEmpty());
}

}  // namespace
}  // namespace zq::test
