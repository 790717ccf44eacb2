// Choosing a device: its format is checked, it is opened and joined to the session.

#include "capture/device_selection.h"

#include <gmock/gmock.h>

#include "support/capture_fixture.h"

namespace zq::test {
namespace {

using platform::fourCharCode;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kNotDV[] = "The original stream is not DV.";

TEST(DVFormat, HasEightKinds) {
  for (const auto& code : {fourCharCode("dv  "), fourCharCode("dv1n"), fourCharCode("dv1p"), fourCharCode("dv5n"),
                           fourCharCode("dv5p"), fourCharCode("dvc "), fourCharCode("dvcp"), fourCharCode("dvpp")}) {
    EXPECT_TRUE(isDVFormat(code));
  }
  for (const auto& code : {fourCharCode("hdv1"), fourCharCode("dvh5"), fourCharCode("DVC "), fourCharCode("mjpg")}) {
    EXPECT_FALSE(isDVFormat(code));
  }
  EXPECT_FALSE(isDVFormat(0));
}

class SelectedDevice : public CaptureTest {
 protected:
  std::shared_ptr<FakeCaptureDevice> makeDevice() { return std::make_shared<FakeCaptureDevice>(journal_); }

  static platform::QTFormatDescription format(platform::FourCharCode code) {
    return {platform::QTMediaTypeVideo, code};
  }
};

TEST_F(SelectedDevice, IsNoneAtFirst) {
  EXPECT_EQ(controller_->selectedVideoDevice(), nullptr);
  EXPECT_EQ(controller_->videoDeviceInput(), nullptr);
  EXPECT_EQ(controller_->controllableDevice(), nullptr);
  EXPECT_FALSE(controller_->hasRecordingDevice());
  EXPECT_THAT(controller_->videoDevices(), IsEmpty());
}

TEST_F(SelectedDevice, IsOpenedAndAddedAndTheSessionRuns) {
  const auto device = makeDevice();
  controller_->setSelectedVideoDevice(device);
  EXPECT_THAT(linesOf({"device", "session", "alert"}),
              ElementsAre("device: open", "session: add input", "session: start"));
  EXPECT_EQ(controller_->selectedVideoDevice(), device);
  EXPECT_TRUE(controller_->hasRecordingDevice());
  EXPECT_EQ(controller_->videoDeviceInput()->device(), device);
}

TEST_F(SelectedDevice, AnotherOneTakesItsPlace) {
  const auto first = makeDevice();
  const auto second = makeDevice();
  controller_->setSelectedVideoDevice(first);
  journal_.clear();
  controller_->setSelectedVideoDevice(second);
  EXPECT_THAT(linesOf({"device", "session"}), ElementsAre("session: remove input", "device: close", "device: open",
                                                          "session: add input", "session: stop", "session: start"));
  EXPECT_FALSE(first->isOpen());
  EXPECT_TRUE(second->isOpen());
  EXPECT_EQ(controller_->selectedVideoDevice(), second);
}

TEST_F(SelectedDevice, NoneReleasesTheHeldOne) {
  const auto device = selectDevice(platform::AVCTransportControls{0, 0});
  play(1, 100, 0);
  controller_->setSelectedVideoDevice(nullptr);
  EXPECT_FALSE(device->isOpen());
  EXPECT_FALSE(controller_->hasRecordingDevice());
  EXPECT_EQ(controller_->currentTimecodeValue(), nullptr);
  EXPECT_THAT(linesOf({"session"}), ElementsAre("session: remove input", "session: stop"));
}

TEST_F(SelectedDevice, BeginsWithoutATimecode) {
  play(1, 100, 0);
  journal_.clear();
  controller_->setSelectedVideoDevice(makeDevice());
  EXPECT_EQ(controller_->currentTimecodeValue(), nullptr);
  EXPECT_THAT(linesOf({"overlay"}), ElementsAre("overlay: 00:00:00:00"));
}

TEST_F(SelectedDevice, WithADVAndAnotherFormatAlertsOnceAndIsOpenedAllTheSame) {
  const auto device = makeDevice();
  device->formats = {format(fourCharCode("dvcp")), format(fourCharCode("hdv2"))};
  controller_->setSelectedVideoDevice(device);
  EXPECT_THAT(alerts_.shown,
              ElementsAre(RecordingAlerts::Alert{
                  kNotDV,
                  "This version of the application cannot handle video stream that is not encoded in DV. If your "
                  "camcorder is a HD camcorder, please activate the DV down-conversion option at playback (most HDV "
                  "camcorders offer this option) to capture video."}));
  EXPECT_TRUE(controller_->hasRecordingDevice());
}

TEST_F(SelectedDevice, AlertsOnceForEachFormatThatIsNotDVBeforeItIsOpened) {
  const auto device = makeDevice();
  device->formats = {format(fourCharCode("hdv1")), format(fourCharCode("dvc ")), format(fourCharCode("hdv2"))};
  controller_->setSelectedVideoDevice(device);
  EXPECT_THAT(linesOf({"alert", "device"}), ElementsAre("alert: The original stream is not DV.",
                                                        "alert: The original stream is not DV.", "device: open"));
}

TEST_F(SelectedDevice, WithoutFormatsAlertsNothing) {
  const auto device = makeDevice();
  device->formats.clear();
  controller_->setSelectedVideoDevice(device);
  EXPECT_THAT(alerts_.shown, IsEmpty());
}

TEST_F(SelectedDevice, TheAlertIsShownInTheUsersLanguage) {
  strings_.texts[kNotDV] = "Der Datenstrom ist nicht DV.";
  const auto device = makeDevice();
  device->formats = {format(fourCharCode("hdv1"))};
  controller_->setSelectedVideoDevice(device);
  EXPECT_EQ(alerts_.shown.at(0).message, "Der Datenstrom ist nicht DV.");
}

TEST_F(SelectedDevice, ThatCannotBeOpenedAlertsItsErrorAndLeavesNone) {
  play(1, 100, 0);
  const auto device = makeDevice();
  device->openError = Error{"Camcorder is in use", "Close the other program."};
  controller_->setSelectedVideoDevice(device);
  EXPECT_THAT(alerts_.shown, ElementsAre(RecordingAlerts::Alert{"Camcorder is in use", "Close the other program."}));
  EXPECT_FALSE(controller_->hasRecordingDevice());
  EXPECT_THAT(linesOf({"session"}), IsEmpty());
  EXPECT_NE(controller_->currentTimecodeValue(), nullptr);  // the selection ended before that
}

TEST_F(SelectedDevice, ThatCannotBeOpenedStillReleasesTheOneBefore) {
  const auto first = selectDevice(platform::AVCTransportControls{0, 0});
  const auto second = makeDevice();
  second->openError = Error{"no", ""};
  controller_->setSelectedVideoDevice(second);
  EXPECT_FALSE(first->isOpen());
  EXPECT_EQ(controller_->selectedVideoDevice(), nullptr);
}

TEST_F(SelectedDevice, ThatCannotBeAddedAlertsAndIsClosedAgain) {
  platform_.parts.addInputError = Error{"The session is full", "Remove a device."};
  const auto device = makeDevice();
  controller_->setSelectedVideoDevice(device);
  EXPECT_THAT(alerts_.shown, ElementsAre(RecordingAlerts::Alert{"The session is full", "Remove a device."}));
  EXPECT_THAT(linesOf({"device", "session", "alert"}),
              ElementsAre("device: open", "session: add input", "alert: The session is full", "device: close"));
  EXPECT_FALSE(controller_->hasRecordingDevice());
  EXPECT_FALSE(device->isOpen());
}

TEST_F(SelectedDevice, LightsTheButtonOfWhatItDoes) {
  struct Row {
    platform::AVCTransportControls controls;
    bool play, rewind, forward;
  };
  for (const Row& row :
       {Row{{1, 10000}, true, false, false}, Row{{1, -4000}, false, true, false}, Row{{0, 13000}, false, false, true},
        Row{{0, 0}, false, false, false}, Row{{1, 0}, false, false, false}}) {
    for (auto* button : {&playButton_, &rewindButton_, &forwardButton_, &recordButton_}) button->setState(false);
    selectDevice(row.controls);
    EXPECT_EQ(playButton_.state(), row.play) << row.controls.speed;
    EXPECT_EQ(rewindButton_.state(), row.rewind) << row.controls.speed;
    EXPECT_EQ(forwardButton_.state(), row.forward) << row.controls.speed;
    EXPECT_FALSE(recordButton_.state());
  }
}

TEST_F(SelectedDevice, NeverDarkensAButton) {
  for (auto* button : {&playButton_, &rewindButton_, &forwardButton_, &recordButton_}) button->setState(true);
  selectDevice(platform::AVCTransportControls{0, 0});
  for (auto* button : {&playButton_, &rewindButton_, &forwardButton_, &recordButton_}) EXPECT_TRUE(button->state());
}

TEST_F(SelectedDevice, WhileRecordingLightsTheRecordButtonWhenItPlays) {
  startRecording();
  selectDevice(platform::AVCTransportControls{1, 10000});
  EXPECT_TRUE(controller_->isRecording());
  EXPECT_TRUE(recordButton_.state());
}

// Bringing the buttons up to date asks whether the tape plays.
TEST_F(SelectedDevice, ThatDoesNotPlayEndsARecording) {
  startRecording();
  selectDevice(platform::AVCTransportControls{0, 0});
  EXPECT_FALSE(controller_->isRecording());
  EXPECT_FALSE(recordButton_.state());
}

TEST_F(SelectedDevice, NoneEndsARecordingToo) {
  selectDevice(platform::AVCTransportControls{1, 10000});
  startRecording();
  controller_->setSelectedVideoDevice(nullptr);
  EXPECT_FALSE(controller_->isRecording());
}

// The clip that a tape at rest ends has no end, as the timecode is forgotten first.
TEST_F(SelectedDevice, ForgetsTheTimecodeBeforeItEndsARecording) {
  settings_.setBoolForKey(ZQACDetectScene, false);
  startRecording();
  play(1, 100, 0);
  selectDevice(platform::AVCTransportControls{0, 0});
  ASSERT_FALSE(controller_->isRecording());
  ASSERT_FALSE(delegate_.infos.empty());
  EXPECT_EQ(delegate_.infos.back().clipEndTimecode, nullptr);
}

TEST_F(SelectedDevice, WorksWithoutAnythingOnScreen) {
  outlets_ = {};
  makeController();
  selectDevice(platform::AVCTransportControls{1, 10000});
  EXPECT_TRUE(controller_->isDevicePlaying());
}

TEST_F(SelectedDevice, AnnouncesItsKeyAndThoseThatFollowIt) {
  Lines keys;
  const auto observation = controller_->keys().addObserver([&](const std::string& key, KeyChange change) {
    keys.push_back((change == KeyChange::willChange ? "will " : "did ") + key);
  });
  controller_->setSelectedVideoDevice(makeDevice());
  EXPECT_THAT(keys, ElementsAre("will selectedVideoDevice", "will hasRecordingDevice", "will controllableDevice",
                                "will videoDeviceInput", "did selectedVideoDevice", "did hasRecordingDevice",
                                "did controllableDevice", "did videoDeviceInput"));
}

TEST_F(SelectedDevice, IsAnnouncedBeforeTheOldOneIsReleased) {
  const auto first = selectDevice(platform::AVCTransportControls{0, 0});
  std::vector<bool> firstIsOpen;
  const auto observation = controller_->keys().addObserver([&](const std::string& key, KeyChange) {
    if (key == "selectedVideoDevice") firstIsOpen.push_back(first->isOpen());
  });
  controller_->setSelectedVideoDevice(makeDevice());
  EXPECT_THAT(firstIsOpen, ElementsAre(true, false));
}

TEST_F(SelectedDevice, IsAnnouncedWhenItCannotBeHadToo) {
  Lines keys;
  const auto observation = controller_->keys().addObserver([&](const std::string& key, KeyChange change) {
    if (key == "selectedVideoDevice") keys.emplace_back(change == KeyChange::willChange ? "will" : "did");
  });
  const auto closed = makeDevice();
  closed->openError = Error{"no", ""};
  controller_->setSelectedVideoDevice(closed);
  platform_.parts.addInputError = Error{"The session is full", ""};
  controller_->setSelectedVideoDevice(makeDevice());
  EXPECT_THAT(keys, ElementsAre("will", "did", "will", "did"));
}

TEST_F(SelectedDevice, MayBeOneOfThoseThatTheHostOffers) {
  const auto device = makeDevice();
  controller_->setVideoDevices({device});
  EXPECT_THAT(controller_->videoDevices(), ElementsAre(device));
  EXPECT_EQ(controller_->selectedVideoDevice(), nullptr);
}

}  // namespace
}  // namespace zq::test
