// The keys that are announced around each change of the device's transport.

#include <gmock/gmock.h>

#include "support/capture_fixture.h"

namespace zq::test {
namespace {

using platform::Notification;
using testing::ElementsAre;
using testing::IsEmpty;

class TransportNotifications : public CaptureTest {
 protected:
  TransportNotifications() { device_ = selectDevice(platform::AVCTransportControls{0, 0}); }

  void observeKeys() {
    observation_ = controller_->keys().addObserver([this](const std::string& key, KeyChange change) {
      keys_.push_back((change == KeyChange::willChange ? "will " : "did ") + key);
    });
  }
  void post(const char* name, const void* object, const std::string& attribute) {
    notifications_.post({name, object, attribute});
  }

  std::shared_ptr<FakeCaptureDevice> device_;
  platform::Observation observation_;
  Lines keys_;
};

constexpr const char* kWill = platform::QTCaptureDeviceAttributeWillChangeNotification;
constexpr const char* kDid = platform::QTCaptureDeviceAttributeDidChangeNotification;
constexpr const char* kTransport = platform::QTCaptureDeviceAVCTransportControlsAttribute;

TEST_F(TransportNotifications, AnnounceThreeKeysBeforeAndAfterTheChange) {
  observeKeys();
  device_->center = &notifications_;
  controller_->setDevicePlaying(true);
  EXPECT_THAT(keys_, ElementsAre("will devicePlaying", "will deviceFastForwarding", "will deviceRewinding",
                                 "did devicePlaying", "did deviceFastForwarding", "did deviceRewinding"));
}

TEST_F(TransportNotifications, AnnounceTheOldStateBeforeAndTheNewOneAfter) {
  std::vector<bool> playing;
  device_->center = &notifications_;
  observation_ = controller_->keys().addObserver([&](const std::string& key, KeyChange) {
    if (key == "devicePlaying") playing.push_back(controller_->isDevicePlaying());
  });
  controller_->setDevicePlaying(true);
  EXPECT_THAT(playing, ElementsAre(false, true));
}

TEST_F(TransportNotifications, OfAnotherDeviceAreIgnored) {
  observeKeys();
  FakeCaptureDevice other(journal_);
  post(kWill, &other, kTransport);
  post(kDid, &other, kTransport);
  post(kDid, nullptr, kTransport);
  EXPECT_THAT(keys_, IsEmpty());
}

TEST_F(TransportNotifications, OfAnotherAttributeAreIgnored) {
  observeKeys();
  post(kWill, device_.get(), "suspended");
  post(kDid, device_.get(), "suspended");
  EXPECT_THAT(keys_, IsEmpty());
}

TEST_F(TransportNotifications, OfADeviceThatCannotBeControlledAreIgnored) {
  observeKeys();
  device_->readOnly = true;
  post(kDid, device_.get(), kTransport);
  device_->readOnly = false;
  device_->controls = std::nullopt;
  post(kDid, device_.get(), kTransport);
  EXPECT_THAT(keys_, IsEmpty());
}

TEST_F(TransportNotifications, OfADeviceThatWasReleasedAreIgnored) {
  controller_->setSelectedVideoDevice(nullptr);
  observeKeys();
  post(kDid, device_.get(), kTransport);
  EXPECT_THAT(keys_, IsEmpty());
}

TEST_F(TransportNotifications, AreNotHeardByAControllerThatIsGone) {
  controller_.reset();
  post(kWill, device_.get(), kTransport);
  post(kDid, device_.get(), kTransport);
}

// As a button does that shows whether the tape plays: its question ends the recording when the tape stops by itself.
TEST_F(TransportNotifications, AnObserverThatAsksEndsTheRecordingOfATapeThatStops) {
  device_->center = &notifications_;
  observation_ = controller_->keys().addObserver([&](const std::string& key, KeyChange change) {
    if (key == "devicePlaying" && change == KeyChange::didChange) playButton_.setState(controller_->isDevicePlaying());
  });
  startRecording();
  EXPECT_TRUE(playButton_.state());
  device_->setAVCTransportControls({0, 0});
  EXPECT_FALSE(playButton_.state());
  EXPECT_FALSE(controller_->isRecording());
}

TEST_F(TransportNotifications, AnObservationEndsWithItsHandle) {
  observeKeys();
  observation_.reset();
  post(kDid, device_.get(), kTransport);
  EXPECT_THAT(keys_, IsEmpty());
}

}  // namespace
}  // namespace zq::test
