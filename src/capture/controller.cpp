#include "capture/controller.h"

#include <mutex>
#include <utility>

#include "capture/settings_keys.h"

// Set-up, devices, transport, sound. The recording switch and its clips are in controller_recording.cpp, what is done
// with each frame in controller_frames.cpp, compression and configurations in controller_options.cpp.

namespace zq {

using platform::Notification;
using platform::QTCaptureDevice;

namespace {

constexpr char kDevicePlaying[] = "devicePlaying";
constexpr char kDeviceFastForwarding[] = "deviceFastForwarding";
constexpr char kDeviceRewinding[] = "deviceRewinding";
constexpr char kSelectedVideoDevice[] = "selectedVideoDevice";

void switchOn(outlets::Button* button, bool on) {
  if (button != nullptr && on) button->setState(true);
}

}  // namespace

ZQACController::ZQACController(const CaptureServices& services, const CaptureOutlets& outlets)
    : runtime_(services.runtime),
      store_(services.settings),
      notifications_(services.notifications),
      alerts_(services.alerts),
      strings_(services.strings),
      log_(services.log),
      outlets_(outlets),
      settings_(services.settings),
      session_(services.capture.makeSession()),
      videoPreviewOutput_(services.capture.makeVideoPreviewOutput()),
      audioPreviewOutput_(services.capture.makeAudioPreviewOutput()),
      fileOutput_(services.capture.makeMovieFileOutput()),
      movieFileOutput_(services.capture.makeMovieFileOutput()),
      transport_([this] { return selectedVideoDevice(); }),
      customCompression_(services.compression, services.settings, services.log),
      devices_(services.runtime, services.capture, *session_, services.alerts, services.strings),
      lock_(services.runtime, "capture controller"),
      thumbnails_(settings_),
      endOfTapeTimer_(services.runtime.mainLoop()),
      compressionChoices_(services.compression, services.strings, services.log, outlets.compressionPopUp),
      alive_(std::make_shared<ZQACController*>(this)) {
  if (outlets_.timecodeView != nullptr) outlets_.timecodeView->setHidden(true);
  if (outlets_.captureView != nullptr) {
    if (outlets_.timecodeView != nullptr) outlets_.captureView->addOverlayView(*outlets_.timecodeView);
    outlets_.captureView->setCaptureSession(session_.get());
  }
  addOutputs();
  if (!videoDevices_.empty()) setSelectedVideoDevice(nullptr);
  buildVideoCompressionOptions();
  if (session_->inputCount() > 0) session_->startRunning();
  observe();
}

// The file output that always carries DV comes before the one that may compress.
void ZQACController::addOutputs() {
  setCaptureVolume(store_.objectForKey(ZQACCaptureMovieVolume) ? store_.floatForKey(ZQACCaptureMovieVolume) : 0.5F);
  const std::shared_ptr<platform::QTCaptureOutput> outputs[] = {videoPreviewOutput_, audioPreviewOutput_, fileOutput_,
                                                                movieFileOutput_};
  for (const auto& output : outputs) {
    if (Status added = session_->addOutput(output); !added.ok()) log_.write(LogLevel::error, added.error().text());
  }
  fileOutput_->setDelegate(this);
  movieFileOutput_->setDelegate(this);
}

void ZQACController::observe() {
  keys_.setDependentKeys(kSelectedVideoDevice, {"hasRecordingDevice", "controllableDevice", "videoDeviceInput"});
  keys_.setDependentKeys("videoCompressionOptions", {"customVideoCompression"});
  observations_.push_back(notifications_.addObserver(
      platform::QTCaptureDeviceAttributeWillChangeNotification,
      [this](const Notification& notification) { deviceAttributeWillChange(notification); }));
  observations_.push_back(
      notifications_.addObserver(platform::QTCaptureDeviceAttributeDidChangeNotification,
                                 [this](const Notification& notification) { deviceAttributeDidChange(notification); }));
  observations_.push_back(
      store_.observe({ZQACDetectScene, ZQACNbDropFrame, ZQACDetectEndTape, ZQACDetectEndTapeSecond,
                      ZQACActionAfterRecord, ZQACFrameSampling, ZQACSampleInterval, ZQACCaptureMovie,
                      ZQACCaptureCompression, ZQACCaptureCompressionSize, ZQACCaptureCompressionData},
                     [this](const std::string&) { observeValueForKeyPath(); }));
}

// The outputs forget the controller first, which waits for a frame that is under way. The device then has to be through
// with the session, which goes with the controller.
ZQACController::~ZQACController() {
  observations_.clear();
  session_->stopRunning();
  fileOutput_->setDelegate(nullptr);
  movieFileOutput_->setDelegate(nullptr);
  alive_.reset();
  if (const auto device = selectedVideoDevice()) device->waitForDelivery();
  devices_.release();
  endOfTapeTimer_.cancel();
  if (outlets_.captureView != nullptr) {
    if (outlets_.timecodeView != nullptr) outlets_.captureView->removeOverlayView(*outlets_.timecodeView);
    outlets_.captureView->setCaptureSession(nullptr);
  }
  movieFileOutput_->recordToOutputFileURL(std::nullopt);
  setThumbnailsPath(std::nullopt);
}

void ZQACController::setDelegate(const ZQACControllerDelegate* delegate) {
  const std::lock_guard guard(lock_);
  delegate_ = delegate;
}

// An option changed by hand: the options no longer are those of a named configuration, which the first item stands for.
void ZQACController::observeValueForKeyPath() const {
  if (loadingConfig_ || outlets_.configurationPopUp == nullptr) return;
  outlets_.configurationPopUp->selectItemAtIndex(0);
}

void ZQACController::setSelectedVideoDevice(const std::shared_ptr<QTCaptureDevice>& device) {
  keys_.willChangeValueForKey(kSelectedVideoDevice);
  devices_.release();
  if (!device || devices_.select(device)) {
    setCurrentTimecodeValue(nullptr);
    updateVideoCompression();
    showTransportOnButtons();
  }
  keys_.didChangeValueForKey(kSelectedVideoDevice);
}

// Lights what is under way; nothing goes dark here, the buttons' own observation does that.
void ZQACController::showTransportOnButtons() {
  switchOn(outlets_.playButton, isDevicePlaying());
  switchOn(outlets_.rewindButton, isDeviceRewinding());
  switchOn(outlets_.forwardButton, isDeviceFastForwarding());
  switchOn(outlets_.recordButton, isRecording());
}

std::shared_ptr<QTCaptureDevice> ZQACController::selectedVideoDevice() const {
  return devices_.selectedDevice();
}

std::shared_ptr<QTCaptureDevice> ZQACController::controllableDevice() const {
  return transport_.controllableDevice();
}

std::shared_ptr<platform::QTCaptureDeviceInput> ZQACController::videoDeviceInput() const {
  return devices_.input();
}

bool ZQACController::hasRecordingDevice() const {
  return videoDeviceInput() != nullptr;
}

void ZQACController::setVideoDevices(std::vector<std::shared_ptr<QTCaptureDevice>> devices) {
  const std::lock_guard guard(lock_);
  videoDevices_ = std::move(devices);
}

std::vector<std::shared_ptr<QTCaptureDevice>> ZQACController::videoDevices() const {
  const std::lock_guard guard(lock_);
  return videoDevices_;
}

void ZQACController::setDevicePlaying(bool playing) {
  if (playing) {
    transport_.play();
  } else {
    transport_.pause();
  }
  if (!session_->isRunning()) session_->startRunning();
}

// Asking is what ends a recording when the tape has stopped by itself: whoever shows the transport asks at each change.
bool ZQACController::isDevicePlaying() {
  const bool playing = transport_.isPlaying();
  if (!playing && isRecording()) setRecording(false);
  return playing;
}

bool ZQACController::isDevicePause() const {
  return transport_.isPaused();
}
void ZQACController::setDeviceFastForwarding(bool on) {
  transport_.setFastForwarding(on);
}
bool ZQACController::isDeviceFastForwarding() const {
  return transport_.isFastForwarding();
}
void ZQACController::setDeviceRewinding(bool on) {
  transport_.setRewinding(on);
}
bool ZQACController::isDeviceRewinding() const {
  return transport_.isRewinding();
}

void ZQACController::stopDevice() {
  transport_.stop();
  if (session_->isRunning()) session_->stopRunning();
}

bool ZQACController::isAboutControllableDevice(const Notification& notification) const {
  const std::shared_ptr<QTCaptureDevice> device = controllableDevice();
  return device && notification.object == static_cast<const void*>(device.get()) &&
         notification.changedAttribute == platform::QTCaptureDeviceAVCTransportControlsAttribute;
}

void ZQACController::deviceAttributeWillChange(const Notification& notification) {
  if (!isAboutControllableDevice(notification)) return;
  for (const char* key : {kDevicePlaying, kDeviceFastForwarding, kDeviceRewinding}) keys_.willChangeValueForKey(key);
}

void ZQACController::deviceAttributeDidChange(const Notification& notification) {
  if (!isAboutControllableDevice(notification)) return;
  for (const char* key : {kDevicePlaying, kDeviceFastForwarding, kDeviceRewinding}) keys_.didChangeValueForKey(key);
}

void ZQACController::setCaptureVolume(float volume) {
  audioPreviewOutput_->setVolume(volume);
  store_.setFloatForKey(ZQACCaptureMovieVolume, volume);
}

float ZQACController::captureVolume() const {
  return audioPreviewOutput_->volume();
}

}  // namespace zq
