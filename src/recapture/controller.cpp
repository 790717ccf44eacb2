#include "recapture/controller.h"

#include <algorithm>
#include <mutex>
#include <utility>

// Set-up, devices and accessors. The session's start and end are in controller_session.cpp, the transport in
// controller_transport.cpp, what is done with each frame in controller_frames.cpp, the movies in
// controller_recording.cpp, compression and the options sheet in controller_options.cpp.

namespace zq {

using platform::Notification;
using platform::QTCaptureDevice;

namespace {

constexpr char kVideoDevices[] = "videoDevices";

}  // namespace

ZQACRecaptureController::ZQACRecaptureController(const RecaptureServices& services, const RecaptureOutlets& outlets)
    : runtime_(services.runtime),
      capture_(services.capture),
      notifications_(services.notifications),
      alerts_(services.alerts),
      strings_(services.strings),
      files_(services.files),
      log_(services.log),
      outlets_(outlets),
      screen_(services.runtime, outlets),
      session_(services.capture.makeSession()),
      videoPreviewOutput_(services.capture.makeVideoPreviewOutput()),
      movieFileOutput_(services.capture.makeMovieFileOutput()),
      movieFileOutputAlter_(services.capture.makeMovieFileOutput()),
      audioPreviewOutput_(services.capture.makeAudioPreviewOutput()),
      transport_([this] { return selectedVideoDevice(); }),
      customCompression_(services.compression, services.settings, services.log),
      devices_(services.runtime, services.capture, *session_, services.alerts, services.strings),
      lock_(services.runtime, "recapture controller"),
      store_(services.settings),
      compressionChoices_(services.compression, services.strings, services.log, outlets.compressionOptionsPopup),
      alive_(std::make_shared<ZQACRecaptureController*>(this)),
      preroll_(services.runtime, [this] { startRecord(); }) {
  screen_.connect(*session_);
  addOutputs();
  if (!videoDevices().empty()) setSelectedVideoDevice(nullptr);
  buildVideoCompressionOptions();
  announceFormatName();
  if (session_->inputCount() > 0) session_->startRunning();
  observeDevices();
  observeSettings();
}

void ZQACRecaptureController::addOutputs() {
  audioPreviewOutput_->setVolume(0);
  movieFileOutput_->setDelegate(this);
  movieFileOutputAlter_->setDelegate(this);
  const std::shared_ptr<platform::QTCaptureOutput> outputs[] = {videoPreviewOutput_, movieFileOutput_,
                                                                movieFileOutputAlter_, audioPreviewOutput_};
  for (const auto& output : outputs) {
    if (Status added = session_->addOutput(output); !added.ok()) log_.write(LogLevel::error, added.error().text());
  }
}

void ZQACRecaptureController::observeDevices() {
  for (const char* name :
       {platform::QTCaptureDeviceWasConnectedNotification, platform::QTCaptureDeviceWasDisconnectedNotification}) {
    observations_.push_back(notifications_.addObserver(name, [this](const Notification&) { devicesDidChange(); }));
  }
}

void ZQACRecaptureController::awakeFromNib() {
  screen_.layOut();
}

// The outputs forget the controller first, which waits for a frame that is under way; then the recording that a preroll
// thread is setting up is waited for, and the device is through with the session.
ZQACRecaptureController::~ZQACRecaptureController() {
  observations_.clear();
  attributeObservation_.reset();
  session_->stopRunning();
  movieFileOutput_->setDelegate(nullptr);
  movieFileOutputAlter_->setDelegate(nullptr);
  preroll_.close();
  alive_.reset();
  session_->stopRunning();
  if (const auto device = selectedVideoDevice()) device->waitForDelivery();
  devices_.release();
  screen_.disconnect();
  movieFileOutput_->recordToOutputFileURL(std::nullopt);
}

void ZQACRecaptureController::setDelegate(const ZQACRecaptureControllerDelegate* delegate) {
  const std::lock_guard guard(lock_);
  delegate_ = delegate;
}

std::vector<std::shared_ptr<QTCaptureDevice>> ZQACRecaptureController::videoDevices() {
  if (!devicesAreKnown_) refreshDevices();
  return allVideoDevices_;
}

void ZQACRecaptureController::refreshDevices() {
  keys_.willChangeValueForKey(kVideoDevices);
  allVideoDevices_ = capture_.inputDevicesWithMediaType(platform::QTMediaTypeMuxed);
  devicesAreKnown_ = true;
  keys_.didChangeValueForKey(kVideoDevices);
  const auto selected = selectedVideoDevice();
  if (!selected || std::ranges::find(allVideoDevices_, selected) != allVideoDevices_.end()) return;
  setSelectedVideoDevice(allVideoDevices_.empty() ? nullptr : allVideoDevices_.front());
}

void ZQACRecaptureController::devicesDidChange() {
  refreshDevices();
}

void ZQACRecaptureController::setSelectedVideoDevice(const std::shared_ptr<QTCaptureDevice>& device) {
  devices_.release();
  if (device && !devices_.select(device, [this] { stopPlaying(); })) return;
  updateVideoCompression();
}

TapeValue ZQACRecaptureController::currentTape() const {
  const std::lock_guard guard(lock_);
  return currentTape_;
}

bool ZQACRecaptureController::isStart() const {
  const std::lock_guard guard(lock_);
  return isStart_;
}

void ZQACRecaptureController::setRecaptureModeTag(std::int32_t tag) {
  const std::lock_guard guard(lock_);
  recaptureModeTag_ = tag;
}

std::int32_t ZQACRecaptureController::recaptureModeTag() const {
  const std::lock_guard guard(lock_);
  return recaptureModeTag_;
}

bool ZQACRecaptureController::isRecaptureDone() const {
  const std::lock_guard guard(lock_);
  return isRecaptureDone_;
}

std::string ZQACRecaptureController::processNote() const {
  const std::lock_guard guard(lock_);
  return processNote_;
}

void ZQACRecaptureController::setProcessNote(const std::string& note) {
  const std::lock_guard guard(lock_);
  if (note == processNote_) return;
  processNote_ = note;
  screen_.setNote(note);
}

std::int32_t ZQACRecaptureController::totalCountOfClipsToBeRecaptured() const {
  const std::lock_guard guard(lock_);
  return totalCountOfClipsToBeRecaptured_;
}

std::int32_t ZQACRecaptureController::totalCountOfClipsToBeRecapturedInSequence() const {
  const std::lock_guard guard(lock_);
  return totalCountOfClipsToBeRecapturedInSequence_;
}

bool ZQACRecaptureController::isRecording() const {
  const std::lock_guard guard(lock_);
  return isRecording_;
}

bool ZQACRecaptureController::isPrerolling() const {
  const std::lock_guard guard(lock_);
  return isPrerolling_;
}

SequenceValue ZQACRecaptureController::sequenceFound() const {
  const std::lock_guard guard(lock_);
  return sequenceFound_;
}

void ZQACRecaptureController::setSequenceFound(const SequenceValue& sequence) {
  const std::lock_guard guard(lock_);
  sequenceFound_ = sequence;
}

ClipValue ZQACRecaptureController::currentClip() const {
  const std::lock_guard guard(lock_);
  return currentClip_;
}

void ZQACRecaptureController::setCurrentClip(const ClipValue& clip) {
  const std::lock_guard guard(lock_);
  currentClip_ = clip;
}

ClipValue ZQACRecaptureController::clipToBeRecaptured() const {
  const std::lock_guard guard(lock_);
  return clipToBeRecaptured_;
}

void ZQACRecaptureController::setClipToBeRecaptured(const ClipValue& clip) {
  const std::lock_guard guard(lock_);
  clipToBeRecaptured_ = clip;
}

SMPTETime ZQACRecaptureController::currentTimecode() const {
  const std::lock_guard guard(lock_);
  return currentTimecode_;
}

void ZQACRecaptureController::setCurrentTimecode(const SMPTETime& timecode) {
  const std::lock_guard guard(lock_);
  currentTimecode_ = timecode;
  screen_.setTimecode(timecode);
}

DateValue ZQACRecaptureController::currentDateOnClip() const {
  const std::lock_guard guard(lock_);
  return currentDateOnClip_;
}

void ZQACRecaptureController::setCurrentDateOnClip(const DateValue& date) {
  const std::lock_guard guard(lock_);
  if (date == currentDateOnClip_) return;
  currentDateOnClip_ = date;
  screen_.setDate(date);
}

SMPTETime ZQACRecaptureController::startTimecode() const {
  const std::lock_guard guard(lock_);
  return startTimecode_;
}

void ZQACRecaptureController::setStartTimecode(const SMPTETime& timecode) {
  const std::lock_guard guard(lock_);
  startTimecode_ = timecode;
}

SMPTETime ZQACRecaptureController::endTimecode() const {
  const std::lock_guard guard(lock_);
  return endTimecode_;
}

void ZQACRecaptureController::setEndTimecode(const SMPTETime& timecode) {
  const std::lock_guard guard(lock_);
  endTimecode_ = timecode;
}

std::optional<std::string> ZQACRecaptureController::moviePath() const {
  const std::lock_guard guard(lock_);
  return moviePath_;
}

void ZQACRecaptureController::setMoviePath(const std::optional<std::string>& path) {
  const std::lock_guard guard(lock_);
  moviePath_ = path;
}

}  // namespace zq
