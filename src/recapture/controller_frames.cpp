// What is decided at each frame, on the delivery thread.

#include <mutex>

#include "capture/compression_options.h"
#include "dv/recording_date_scan.h"
#include "recapture/controller.h"
#include "recapture/process_notes.h"
#include "recapture/tape_search.h"
#include "timecode/timecode_utils.h"

namespace zq {

using platform::QTSampleBuffer;

namespace {

// After a sequence is found the tape plays and then goes back a little, so that what follows starts from a deck in a
// known motion, near the place where the sequence was found.
constexpr std::int32_t kSettlingFrames = 251;
constexpr std::int32_t kSettlingFramesForward = 170;

constexpr std::int32_t kFramesBeforeJump = 13;

constexpr char kNoSequenceMessage[] = "There is no sequence to be recaptured in this position!";
constexpr char kNoSequenceInformative[] = "Please move the tape to another position.";

}  // namespace

// Each frame is looked at once, from the output that carries the untouched DV stream. Whether a session was started is
// not asked: frames are followed whenever they come.
void ZQACRecaptureController::captureOutputDidOutputSampleBufferFromConnection(
    platform::QTCaptureOutput& output, const QTSampleBuffer& buffer,
    const platform::QTCaptureConnection& /*connection*/) {
  const std::lock_guard guard(lock_);
  if (isRecaptureDone_) return;
  const bool compressed = !isNoCompression(videoCompressionOptions_);
  const platform::QTCaptureOutput* carriesDV = compressed ? movieFileOutputAlter_.get() : movieFileOutput_.get();
  if (&output == carriesDV) recaptureEntryWithSampleBuffer(buffer);
}

void ZQACRecaptureController::captureOutputMustChangeOutputFileAtURLForConnectionsDueToError(
    platform::QTCaptureFileOutput& /*output*/, const std::string& /*path*/,
    const std::vector<platform::QTCaptureConnection>& /*connections*/, const Error& /*error*/) {}

void ZQACRecaptureController::recaptureEntryWithSampleBuffer(const QTSampleBuffer& buffer) {
  const std::lock_guard guard(lock_);
  if (buffer.formatDescription.mediaType != platform::QTMediaTypeVideo || buffer.lengthForAllSamples() == 0) return;
  const DateValue date = getDateFromSampleBuffer(buffer);
  if (!buffer.smpteTime || !date || isPrerolling_) return;
  setCurrentTimecode(*buffer.smpteTime);
  setCurrentDateOnClip(date);
  if (!sequenceFound_) return findSequenceOnDate(date);
  setCurrentClip(currentClipOnDate(date));
  setClipToBeRecaptured(findNextClipToBeRecaptured());
  if (settle()) return;
  screen_.moveCursor(currentTimecode_, currentDateOnClip_);
  if (isRecording_) {
    setProcessNote(note::kRecapturing);
    screen_.showClipBeingRecaptured(clipToBeRecaptured_);
    return generateMovieFile();
  }
  position();
}

bool ZQACRecaptureController::isSettling() const {
  const std::lock_guard guard(lock_);
  return sequenceFound_ && offsetAfterCallOfDidOutputSample_ < kSettlingFrames;
}

/// Whether the tape still settles.
bool ZQACRecaptureController::settle() {
  if (offsetAfterCallOfDidOutputSample_ >= kSettlingFrames) return false;
  if (offsetAfterCallOfDidOutputSample_ < kSettlingFramesForward) {
    if (!isDevicePlaying()) setDevicePlaying(true);
  } else {
    if (!isDeviceRewinding()) setDeviceRewinding(true);
  }
  ++offsetAfterCallOfDidOutputSample_;
  return true;
}

void ZQACRecaptureController::position() {
  if (!isInClipToBeRecaptured()) {
    toDoDeviceNextAction();
  } else {
    if (isDeviceFastforwarding()) setDevicePlaying(true);
    tinyAdjustToBeginning();
  }
  if (currentClip_ && currentClip_ == clipBefore()) slowDown();
  if (!isInClipToBeRecaptured() || isBehindStart()) return setProcessNote(note::kSearchingClip);
  setProcessNote(note::kClipFound);
  preroll_.request();
  currentDeviceAction_ = DeviceAction::nothing;
}

/// Whether the tape is in the clip, past the first second of it and not at its very start.
bool ZQACRecaptureController::isBehindStart() const {
  if (!clipToBeRecaptured_) return false;
  const TimecodeValue& start = clipToBeRecaptured_->timecodeStartClip();
  const bool atStart = ZQACTimecodeUtils::timecodeCompareWith(currentTimecode_, start ? *start : nullTimecode) == 0;
  return !atStart && compareDates(currentDateOnClip_, clipToBeRecaptured_->dateStartClip()) > 0;
}

// Ten sequences for both systems: the last two of a 625/50 frame are never read.
DateValue ZQACRecaptureController::getDateFromSampleBuffer(const QTSampleBuffer& buffer) const {
  return scanRecordingDate(buffer.bytesForAllSamples, &log_).date;
}

void ZQACRecaptureController::findSequenceOnDate(const DateValue& date) {
  const std::lock_guard guard(lock_);
  setProcessNote(note::kSearchingSequence);
  if (const SequenceValue found = date && currentTape_ ? sequenceOnDate(*currentTape_, date) : nullptr) {
    screen_.showSequence(found);
    setSequenceFound(found);
    offsetAfterCallOfDidOutputSample_ = 0;
    totalCountOfClipsToBeRecapturedInSequence_ = found->recapturedClipsCount();
    return;
  }
  if (recaptureModeTag_ != 0) {
    if (!isDevicePlaying()) return;
    stopPlaying();
    return triggerAlert(kNoSequenceMessage, kNoSequenceInformative);
  }
  if (jumpFrameCount_ < kFramesBeforeJump) {
    ++jumpFrameCount_;
    return;
  }
  jumpFrameCount_ = 0;
  seeking();
}

// A date between two clips keeps the clip before it: what stands between scenes has no clip of its own.
ClipValue ZQACRecaptureController::currentClipOnDate(const DateValue& date) {
  const std::lock_guard guard(lock_);
  if (!sequenceFound_ || !date || isPrerolling_) return currentClip_;
  const ClipValue other = otherClipOnDate(*sequenceFound_, date, currentClip_);
  if (!other) return currentClip_;
  screen_.showClip(other);
  return other;
}

ClipValue ZQACRecaptureController::findNextClipToBeRecaptured() {
  const std::lock_guard guard(lock_);
  const SequenceValue sequence = sequenceFound_;
  if (!sequence) return nullptr;
  if (ClipValue next = nextClipToBeRecaptured(*sequence)) return next;
  sequence->setIsAllClipsRecaptured(true);
  endRecapture();
  return nullptr;
}

ClipValue ZQACRecaptureController::clipBefore() const {
  const std::lock_guard guard(lock_);
  return zq::clipBefore(sequenceFound_, clipToBeRecaptured_);
}

// Two that are null count as a match, as when nothing is looked for and nothing was found.
bool ZQACRecaptureController::isInClipToBeRecaptured() {
  const std::lock_guard guard(lock_);
  isInClipToBeRecaptured_ = currentClip_ == clipToBeRecaptured_;
  return isInClipToBeRecaptured_;
}

}  // namespace zq
