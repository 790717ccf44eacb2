// Which camcorder is recaptured from.

#include <gmock/gmock.h>

#include "support/recapture_fixture.h"

namespace zq::test {
namespace {

using platform::fourCharCode;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using Alert = RecordingAlerts::Alert;

class RecaptureDevices : public RecaptureTest {
 protected:
  std::shared_ptr<FakeCaptureDevice> makeDevice() { return std::make_shared<FakeCaptureDevice>(journal_); }
  void connect(std::vector<std::shared_ptr<platform::QTCaptureDevice>> devices) {
    platform_.muxedDevices = std::move(devices);
    notifications_.post({platform::QTCaptureDeviceWasConnectedNotification, nullptr, ""});
  }
  void disconnect(std::vector<std::shared_ptr<platform::QTCaptureDevice>> left) {
    platform_.muxedDevices = std::move(left);
    notifications_.post({platform::QTCaptureDeviceWasDisconnectedNotification, nullptr, ""});
  }
};

TEST_F(RecaptureDevices, NoneIsSelectedAtFirstHoweverManyThereAre) {
  const auto one = makeDevice();
  const auto two = makeDevice();
  platform_.muxedDevices = {one, two};
  controller_.reset();
  journal_.clear();
  makeController();
  EXPECT_EQ(controller_->selectedVideoDevice(), nullptr);
  EXPECT_FALSE(controller_->hasRecordingDevice());
  EXPECT_THAT(controller_->videoDevices(), ElementsAre(one, two));
  EXPECT_THAT(linesOf({"device", "session"}), IsEmpty());
}

TEST_F(RecaptureDevices, OneThatIsConnectedIsListedNotSelected) {
  const auto device = makeDevice();
  connect({device});
  EXPECT_THAT(controller_->videoDevices(), ElementsAre(device));
  EXPECT_EQ(controller_->selectedVideoDevice(), nullptr);
}

TEST_F(RecaptureDevices, TheListIsAnnouncedAroundItsChange) {
  std::vector<std::pair<std::string, std::size_t>> told;
  const auto observation = controller_->keys().addObserver(
      [&](const std::string& key, KeyChange) { told.emplace_back(key, controller_->videoDevices().size()); });
  connect({makeDevice()});
  EXPECT_THAT(told, ElementsAre(std::pair("videoDevices", 0U), std::pair("videoDevices", 1U)));
}

TEST_F(RecaptureDevices, TheFirstThatIsLeftFollowsTheSelectedOneThatWasDisconnected) {
  const auto one = makeDevice();
  const auto two = makeDevice();
  const auto three = makeDevice();
  connect({one, two, three});
  controller_->setSelectedVideoDevice(three);
  disconnect({one, two});
  EXPECT_EQ(controller_->selectedVideoDevice(), one);
  EXPECT_FALSE(three->isOpen());
}

TEST_F(RecaptureDevices, NoneFollowsTheOnlyOne) {
  const auto device = makeDevice();
  connect({device});
  controller_->setSelectedVideoDevice(device);
  disconnect({});
  EXPECT_EQ(controller_->selectedVideoDevice(), nullptr);
  EXPECT_FALSE(device->isOpen());
}

TEST_F(RecaptureDevices, TheSelectedOneStaysWhenAnotherIsDisconnected) {
  const auto one = makeDevice();
  const auto two = makeDevice();
  connect({one, two});
  controller_->setSelectedVideoDevice(two);
  journal_.clear();
  disconnect({two});
  EXPECT_EQ(controller_->selectedVideoDevice(), two);
  EXPECT_THAT(journal_.lines(), IsEmpty());
}

TEST_F(RecaptureDevices, AreNoLongerFollowedWhenTheControllerIsGone) {
  controller_.reset();
  connect({makeDevice()});
  EXPECT_THAT(platform_.parts.inputs, IsEmpty());
}

TEST_F(RecaptureDevices, OneIsOpenedAddedStoppedAndTheSessionRuns) {
  const auto device = makeDevice();
  device->controls = kPlaying;
  controller_->setSelectedVideoDevice(device);
  EXPECT_THAT(journal_.lines(),
              ElementsAre("device: open", "session: add input", "device: mode 0 speed 0", "session: start"));
  EXPECT_EQ(controller_->selectedVideoDevice(), device);
  EXPECT_TRUE(controller_->hasRecordingDevice());
}

TEST_F(RecaptureDevices, OneWithoutATransportIsSelectedAsWell) {
  const auto device = makeDevice();
  device->controls = std::nullopt;
  controller_->setSelectedVideoDevice(device);
  EXPECT_THAT(journal_.lines(), ElementsAre("device: open", "session: add input", "session: start"));
}

TEST_F(RecaptureDevices, AnotherTakesThePlaceOfTheOneBefore) {
  const auto first = selectDevice(kStopped);
  controller_->setSelectedVideoDevice(makeDevice());
  EXPECT_THAT(journal_.lines(),
              ElementsAre("session: remove input", "device: close", "device: open", "session: add input",
                          "device: mode 0 speed 0", "session: stop", "session: start"));
  EXPECT_FALSE(first->isOpen());
}

TEST_F(RecaptureDevices, NoneReleasesTheOneBefore) {
  selectDevice(kStopped);
  controller_->setSelectedVideoDevice(nullptr);
  EXPECT_THAT(journal_.lines(), ElementsAre("session: remove input", "device: close", "session: stop"));
}

TEST_F(RecaptureDevices, OneWithADVAndAnotherFormatAlertsOnceAndIsSelected) {
  const auto device = makeDevice();
  device->formats = {{platform::QTMediaTypeVideo, fourCharCode("dvcp")},
                     {platform::QTMediaTypeVideo, fourCharCode("hdv2")}};
  controller_->setSelectedVideoDevice(device);
  ASSERT_THAT(alerts_.shown, SizeIs(1));
  EXPECT_EQ(alerts_.shown.at(0).message, "The original stream is not DV.");
  EXPECT_THAT(linesOf({"alert", "device"}),
              ElementsAre("alert: The original stream is not DV.", "device: open", "device: mode 0 speed 0"));
  EXPECT_EQ(controller_->selectedVideoDevice(), device);
}

TEST_F(RecaptureDevices, OneThatCannotBeOpenedAlertsAndIsNotSelected) {
  const auto first = selectDevice(kStopped);
  const auto device = makeDevice();
  device->openError = Error{"Camcorder is in use", "Close the other program."};
  controller_->setSelectedVideoDevice(device);
  EXPECT_THAT(alerts_.shown, ElementsAre(Alert{"Camcorder is in use", "Close the other program."}));
  EXPECT_THAT(journal_.lines(),
              ElementsAre("session: remove input", "device: close", "device: open", "alert: Camcorder is in use"));
  EXPECT_EQ(controller_->selectedVideoDevice(), nullptr);
  EXPECT_FALSE(first->isOpen());
}

TEST_F(RecaptureDevices, OneThatCannotBeAddedIsStoppedThenAlertsAndIsClosed) {
  platform_.parts.addInputError = Error{"The session is full", "Remove a device."};
  const auto device = makeDevice();
  device->controls = kPlaying;
  alerts_.whileShown = [&] {
    EXPECT_EQ(controller_->selectedVideoDevice(), device);
    EXPECT_TRUE(device->isOpen());
  };
  controller_->setSelectedVideoDevice(device);
  EXPECT_THAT(alerts_.shown, ElementsAre(Alert{"The session is full", "Remove a device."}));
  EXPECT_THAT(journal_.lines(), ElementsAre("device: open", "session: add input", "device: mode 0 speed 0",
                                            "alert: The session is full", "device: close"));
  EXPECT_EQ(controller_->selectedVideoDevice(), nullptr);
}

TEST_F(RecaptureDevices, BeingStoppedForgetsTheLastAction) {
  load({{{100, 4000, 250, false}, {120, 5000}}});
  const auto device = selectDevice(kPlaying);
  settleAt(4000, 100);
  play(4000, 100);
  controller_->setSelectedVideoDevice(device);
  device->controls = kPlaying;
  journal_.clear();
  play(4000, 100);
  EXPECT_THAT(deviceCommands(), ElementsAre("device: mode 1 speed 13000"));
}

}  // namespace
}  // namespace zq::test
