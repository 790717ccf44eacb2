// What is done with each frame, on the delivery thread.

#include <fmt/format.h>

#include <mutex>
#include <utility>

#include "capture/controller.h"
#include "capture/date_break.h"
#include "dv/dv_constants.h"
#include "dv/recording_date_scan.h"
#include "timecode/timecode_utils.h"

namespace zq {

using platform::QTSampleBuffer;

namespace {

constexpr char kNotDVMessage[] = "Cannot capture this stream.";
constexpr char kNotDVInformative[] =
    "The input video stream is not a DV stream. Please ensure that your connected device is playing back its content "
    "in "
    "DV format and try again.\nCapture will now stop.";

std::string pointText(const char* name, const SMPTETime& point) {
  return fmt::format("{} ({:02}:{:02}:{:02}.{:02})", name, point.mHours, point.mMinutes, point.mSeconds, point.mFrames);
}

}  // namespace

// Each frame is looked at once, from the output that carries the untouched DV stream.
void ZQACController::captureOutputDidOutputSampleBufferFromConnection(
    platform::QTCaptureOutput& output, const QTSampleBuffer& buffer,
    const platform::QTCaptureConnection& /*connection*/) {
  if (buffer.formatDescription.mediaType != platform::QTMediaTypeVideo || buffer.lengthForAllSamples() == 0) return;
  const std::lock_guard guard(lock_);
  const bool fromMovieFileOutput = &output == movieFileOutput_.get();
  const bool carriesDV = isCompressed() ? &output == fileOutput_.get() : fromMovieFileOutput;
  if (carriesDV) detectAndCaptureThumbnail(buffer);
  if (fromMovieFileOutput) movieDetection(buffer);
}

void ZQACController::detectAndCaptureThumbnail(const QTSampleBuffer& buffer) {
  const std::lock_guard guard(lock_);
  if (isRecording_ && settings_.detectEndTape()) {
    runtime_.mainLoop().post([this, alive = std::weak_ptr(alive_)] {
      if (!alive.expired()) launchStopCaptureTimer();
    });
  }
  if (!isDVFrame(buffer)) return refuseStream();
  if (buffer.smpteTime) setCurrentTimecodeValue(buffer.smpteTime);
  if (!isRecording_) return;
  if (isPrerolling_) endPrerollAt(buffer);
  if (isPrerolling_) return;

  const SMPTETime timecode = timecodeOf(buffer);
  const SharedBytes frame = buffer.bytesForAllSamples;
  const RecordingDateScan scan = scanRecordingDate(frame, &log_);
  if (scan.outOfRange) logUndecodableOnceAClip();
  if (settings_.detectScene() && isDateBreak(currentDate_, scan.date)) cutSceneAt(timecode);
  if (scan.date) setCurrentDate(scan.date);
  if (!clip_.recordingDate) {
    clip_.recordingDate = currentDate_;
    clip_.aspectRatio = scan.aspectRatio;
  }
  sampleThumbnail(frame, timecode);
  thumbnails_.setLastTimecode(buffer.smpteTime);
}

bool ZQACController::isDVFrame(const QTSampleBuffer& buffer) const {
  const std::size_t length = buffer.lengthForAllSamples();
  return length == FRAME_SIZE_525_60 || length == FRAME_SIZE_625_50;
}

void ZQACController::refuseStream() {
  lock_.releaseWhile([this] {
    alerts_.runModal(strings_.localizedString(kNotDVMessage), strings_.localizedString(kNotDVInformative));
  });
  setRecording(false);
}

// The clip opens on the first frame at or after the start timecode, and that frame is its first thumbnail. The frame
// then goes on through the rules for every frame.
void ZQACController::endPrerollAt(const QTSampleBuffer& buffer) {
  const SMPTETime timecode = timecodeOf(buffer);
  if (ZQACTimecodeUtils::timecodeCompareWith(startTimecode_, timecode) > 0) return;
  isPrerolling_ = false;
  if (delegate_ == nullptr || !delegate_->accontrollerWillRecord) return;
  openClip();
  clip_.startTimecode = currentTimecodeValue_;
  movieTrigger_.armStart(currentTimecodeValue_);
  thumbnails_.addFrame(buffer.bytesForAllSamples, timecode);
}

// With frames to skip after a cut, the next clip waits for them to pass, and they belong to no clip: the first frames
// after a cut are often unstable.
void ZQACController::cutSceneAt(const SMPTETime& timecode) {
  moviePath_.reset();
  thumbnails_.setPath(std::nullopt);
  closeClip(thumbnails_.lastTimecode());
  const int skippedFrames = settings_.nbDropFrame();
  if (skippedFrames != 0) {
    startTimecode_ = ZQACTimecodeUtils::addNbFrameToTimecode(skippedFrames, timecode);
    isPrerolling_ = true;
    return;
  }
  openClip();
}

void ZQACController::sampleThumbnail(const SharedBytes& frame, const SMPTETime& timecode) {
  const bool firstOfClip = !clip_.startTimecode;
  if (firstOfClip) {
    clip_.startTimecode = currentTimecodeValue_;
    movieTrigger_.armStart(currentTimecodeValue_);
  }
  thumbnails_.take(frame, timecode, firstOfClip);
}

void ZQACController::logUndecodableOnceAClip() {
  if (std::exchange(undecodableLogged_, true)) return;
  log_.write(LogLevel::warning,
             "A frame points past its own end and was read as undated; others of this clip are not told");
}

void ZQACController::movieDetection(const QTSampleBuffer& buffer) {
  const std::lock_guard guard(lock_);
  if (!isRecording_) return;
  if (const TimecodeValue end = movieTrigger_.takeEndPassedBy(buffer)) {
    log_.write(LogLevel::info, pointText("END", *end));
    movieFileOutput_->recordToOutputFileURL(std::nullopt);
  }
  if (const TimecodeValue start = movieTrigger_.takeStartReachedBy(buffer)) {
    log_.write(LogLevel::info, pointText("START", *start));
    movieFileOutput_->recordToOutputFileURL(moviePath_);
  }
}

TimecodeValue ZQACController::currentTimecodeValue() const {
  const std::lock_guard guard(lock_);
  return currentTimecodeValue_;
}

void ZQACController::setCurrentTimecodeValue(TimecodeValue timecode) {
  const std::lock_guard guard(lock_);
  if (timecode == currentTimecodeValue_) return;
  currentTimecodeValue_ = std::move(timecode);
  if (outlets_.timecodeView == nullptr) return;
  outlets_.timecodeView->setTimecode(currentTimecodeValue_ ? *currentTimecodeValue_ : nullTimecode);
}

DateValue ZQACController::currentDate() const {
  const std::lock_guard guard(lock_);
  return currentDate_;
}

void ZQACController::setCurrentDate(DateValue date) {
  const std::lock_guard guard(lock_);
  if (date == currentDate_) return;
  currentDate_ = std::move(date);
  if (outlets_.timecodeView != nullptr) outlets_.timecodeView->setDate(currentDate_);
}

}  // namespace zq
