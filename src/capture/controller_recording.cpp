// The recording switch: starting and stopping a session, and opening and closing its clips.

#include <mutex>
#include <utility>

#include "capture/controller.h"

namespace zq {
namespace {

// Long enough for the tape to be at speed again when it comes by the place where it stood.
constexpr platform::Duration kPrerollRewind = std::chrono::seconds(2);

}  // namespace

void ZQACController::setRecording(bool recording) {
  const std::lock_guard guard(lock_);
  resetForRecordingSwitch(recording);
  if (isRecording_ == recording) return;
  isRecording_ = recording;
  if (recording) {
    startRecording();
  } else {
    finishRecording();
  }
}

// Done at every call, also when nothing is switched.
void ZQACController::resetForRecordingSwitch(bool recording) {
  isPrerolling_ = false;
  movieTrigger_.armStart(nullptr);
  movieTrigger_.armEnd(nullptr);
  setCurrentDate(nullptr);
  endOfTapeTimer_.cancel();
  if (outlets_.timecodeView != nullptr) outlets_.timecodeView->setHidden(!recording);
}

void ZQACController::startRecording() {
  if (delegate_ != nullptr && delegate_->accontrollerBeginRecord) delegate_->accontrollerBeginRecord(*this);
  if (shouldPreroll()) {
    rewindForPreroll();
    setDevicePlaying(true);
  } else {
    setDevicePlaying(true);
    openClip();
  }
  setProcessNote("Recording started");
}

bool ZQACController::shouldPreroll() const {
  return controllableDevice() && currentTimecodeValue_ && isDevicePause();
}

// A paused tape needs a run-up: it goes back for two seconds, and the clip opens where it stood. Frames that pass
// meanwhile are not recorded, so the switch reads as off for that time.
void ZQACController::rewindForPreroll() {
  isRecording_ = false;
  isPrerolling_ = true;
  startTimecode_ = nullTimecode;
  const SMPTETime stoodAt = *currentTimecodeValue_;
  transport_.playReverse();
  lock_.releaseWhile([this] { runtime_.clock().sleepFor(kPrerollRewind); });
  startTimecode_ = stoodAt;
  isRecording_ = true;
}

void ZQACController::finishRecording() {
  moviePath_.reset();
  movieFileOutput_->recordToOutputFileURL(std::nullopt);
  thumbnails_.setPath(std::nullopt);
  closeClip(currentTimecodeValue_);
  switch (settings_.actionAfterRecord()) {
    case ActionAfterRecord::stop:
      stopDevice();
      break;
    case ActionAfterRecord::pause:
      setDevicePlaying(false);
      break;
    case ActionAfterRecord::leave:
      break;
  }
  if (delegate_ != nullptr && delegate_->accontrollerEndRecord) delegate_->accontrollerEndRecord(*this);
  setProcessNote("Recording stopped");
}

void ZQACController::openClip() {
  if (delegate_ == nullptr || !delegate_->accontrollerWillRecord) return;
  clip_.begin();
  undecodableLogged_ = false;
  const ClipPaths paths = delegate_->accontrollerWillRecord(*this);
  clip_.clipId = paths.clipId;
  if (settings_.captureMovie()) moviePath_ = paths.moviePath;
  thumbnails_.setPath(paths.thumbnailPath);
}

void ZQACController::closeClip(const TimecodeValue& end) {
  if (delegate_ == nullptr || !delegate_->accontrollerDidRecordInfo) return;
  clip_.setEndTimecode(end);
  movieTrigger_.armEnd(end);
  delegate_->accontrollerDidRecordInfo(*this, clip_.info());
}

void ZQACController::launchStopCaptureTimer() {
  const std::lock_guard guard(lock_);
  if (!isRecording_) return;
  endOfTapeTimer_.restart(std::chrono::seconds(settings_.detectEndTapeSecond()),
                          [this, alive = std::weak_ptr(alive_)](std::uint64_t start) {
                            if (alive.expired()) return;
                            const std::lock_guard held(lock_);
                            if (endOfTapeTimer_.isCurrent(start)) stopCapture();
                          });
}

void ZQACController::stopCapture() {
  const std::lock_guard guard(lock_);
  endOfTapeTimer_.clear();
  setRecording(false);
}

// With scene detection on, the recording date cuts the clips, and a change of file is the output's own matter.
void ZQACController::captureOutputMustChangeOutputFileAtURLForConnectionsDueToError(
    platform::QTCaptureFileOutput& /*output*/, const std::string& /*path*/,
    const std::vector<platform::QTCaptureConnection>& /*connections*/, const Error& /*error*/) {
  if (settings_.detectScene()) return;
  const std::lock_guard guard(lock_);
  moviePath_.reset();
  thumbnails_.setPath(std::nullopt);
  closeClip(thumbnails_.lastTimecode());
  openClip();
}

bool ZQACController::isRecording() const {
  const std::lock_guard guard(lock_);
  return isRecording_;
}

bool ZQACController::isPrerolling() const {
  const std::lock_guard guard(lock_);
  return isPrerolling_;
}

void ZQACController::setIsPrerolling(bool prerolling) {
  const std::lock_guard guard(lock_);
  isPrerolling_ = prerolling;
}

SMPTETime ZQACController::startTimecode() const {
  const std::lock_guard guard(lock_);
  return startTimecode_;
}

void ZQACController::setStartTimecode(const SMPTETime& timecode) {
  const std::lock_guard guard(lock_);
  startTimecode_ = timecode;
}

void ZQACController::setProcessNote(const std::string& note) {
  const std::lock_guard guard(lock_);
  processNote_ = note;
}

std::string ZQACController::processNote() const {
  const std::lock_guard guard(lock_);
  return processNote_;
}

ClipInfo ZQACController::currentClipInfo() const {
  const std::lock_guard guard(lock_);
  return clip_.info();
}

std::optional<std::string> ZQACController::moviePath() const {
  const std::lock_guard guard(lock_);
  return moviePath_;
}

void ZQACController::setMoviePath(std::optional<std::string> path) {
  const std::lock_guard guard(lock_);
  moviePath_ = std::move(path);
}

std::optional<std::string> ZQACController::thumbnailsPath() const {
  const std::lock_guard guard(lock_);
  return thumbnails_.path();
}

void ZQACController::setThumbnailsPath(const std::optional<std::string>& path) {
  const std::lock_guard guard(lock_);
  thumbnails_.setPath(path);
}

TimecodeValue ZQACController::timecodeStartValue() const {
  const std::lock_guard guard(lock_);
  return movieTrigger_.start();
}

void ZQACController::setTimecodeStartValue(TimecodeValue start) {
  const std::lock_guard guard(lock_);
  movieTrigger_.armStart(std::move(start));
}

TimecodeValue ZQACController::timecodeEndValue() const {
  const std::lock_guard guard(lock_);
  return movieTrigger_.end();
}

void ZQACController::setTimecodeEndValue(TimecodeValue end) {
  const std::lock_guard guard(lock_);
  movieTrigger_.armEnd(std::move(end));
}

}  // namespace zq
