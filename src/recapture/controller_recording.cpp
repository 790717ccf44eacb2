// The movie of a clip: set up by a preroll thread, opened and closed by the timecodes that pass.

#include <algorithm>
#include <mutex>

#include "recapture/controller.h"
#include "recapture/positioning.h"
#include "recapture/process_notes.h"
#include "timecode/timecode_utils.h"

namespace zq {
namespace {

// A start that was passed by more frames is not taken: the movie would lack its beginning.
constexpr int kFramesLateAtMost = 4;

SMPTETime timeOf(const TimecodeValue& value) {
  return value ? *value : nullTimecode;
}

}  // namespace

void ZQACRecaptureController::setRecording(bool recording) {
  const std::lock_guard guard(lock_);
  setStartTimecode(nullTimecode);
  setEndTimecode(nullTimecode);
  screen_.setOverlayHidden(!isRecording_);
  if (recording == isRecording_) return;
  if (!recording) {
    isRecording_ = false;
    setMoviePath(std::nullopt);
    isInClipToBeRecaptured_ = false;
    return;
  }
  isRecording_ = false;
  setIsPrerolling(true);
  runtime_.mainLoop().post([this, alive = std::weak_ptr(alive_)] {
    if (!alive.expired()) restartSession();
  });
  setDevicePlaying(true);
  setStartTimecode(timeOf(clipToBeRecaptured_ ? clipToBeRecaptured_->timecodeStartClip() : nullptr));
  setEndTimecode(timeOf(clipToBeRecaptured_ ? clipToBeRecaptured_->timecodeEndClip() : nullptr));
  setIsPrerolling(false);
  isRecording_ = true;
}

void ZQACRecaptureController::generateMovieFile() {
  const std::lock_guard guard(lock_);
  if (isPrerolling_) return;
  if (startIsReached()) return openMovie();
  if (endIsReached()) closeMovie();
}

bool ZQACRecaptureController::startIsReached() const {
  return startTimecode_ != nullTimecode &&
         ZQACTimecodeUtils::timecodeCompareWith(currentTimecode_, startTimecode_) >= 0;
}

void ZQACRecaptureController::openMovie() {
  const int timebase = currentClip_ ? currentClip_->timebase() : 0;
  const int late = framesFromTo(valueWithSMPTETime(startTimecode_), valueWithSMPTETime(currentTimecode_), timebase);
  if (late > kFramesLateAtMost) return;
  if (delegate_ == nullptr || !delegate_->acRecaptureControllerWillRecord) return;
  setProcessNote(note::kStart);
  const std::optional<RecapturePaths> answer = delegate_->acRecaptureControllerWillRecord(*this);
  setMoviePath(currentClip_ ? std::optional(currentClip_->recapturePath()) : std::nullopt);
  isToCreateAlias_ = false;
  if (answer) {
    setMoviePath(answer->moviePath);
    isToCreateAlias_ = true;
  }
  movieFileOutput_->recordToOutputFileURL(moviePath_);
  setStartTimecode(nullTimecode);
}

bool ZQACRecaptureController::endIsReached() const {
  return endTimecode_ != nullTimecode && ZQACTimecodeUtils::timecodeCompareWith(currentTimecode_, endTimecode_) >= 0;
}

// What is told and where the movie goes is the clip's that the tape is in; what is finished is the clip that was looked
// for. The recording only began because they were one.
void ZQACRecaptureController::closeMovie() {
  if (delegate_ == nullptr || !delegate_->acRecaptureControllerDidRecordInfo) return;
  const RecaptureInfo info = infoOfCurrentClip();
  delegate_->acRecaptureControllerDidRecordInfo(*this, info);
  if (std::ranges::find(allClipsInfosForMainApp_, info) == allClipsInfosForMainApp_.end()) {
    allClipsInfosForMainApp_.push_back(info);
  }
  movieFileOutput_->recordToOutputFileURL(std::nullopt);
  setEndTimecode(nullTimecode);
  if (clipToBeRecaptured_) clipToBeRecaptured_->setRecaptureFinished(true);
  --totalCountOfClipsToBeRecaptured_;
  --totalCountOfClipsToBeRecapturedInSequence_;
  setClipToBeRecaptured(findNextClipToBeRecaptured());
}

RecaptureInfo ZQACRecaptureController::infoOfCurrentClip() const {
  RecaptureInfo info;
  info.moviePath = moviePath_;
  if (!currentClip_) return info;
  info.clipId = currentClip_->clipId();
  info.clipRecordingDate = currentClip_->dateStartClip();
  info.clipStartTimecode = currentClip_->timecodeStartClip();
  info.clipEndTimecode = currentClip_->timecodeEndClip();
  info.recapturePath = currentClip_->recapturePath();
  return info;
}

// A movie that was written at the clip's own path leaves the recording as it is; so does one that is gone.
void ZQACRecaptureController::captureOutputDidFinishRecordingToOutputFileAtURLForConnectionsDueToError(
    platform::QTCaptureFileOutput& /*output*/, const std::string& /*path*/,
    const std::vector<platform::QTCaptureConnection>& /*connections*/, const std::optional<Error>& /*error*/) {
  const std::lock_guard guard(lock_);
  if (!isToCreateAlias_) return;
  const auto alias = moviePath_ ? files_.aliasWithPath(*moviePath_) : nullptr;
  if (!alias) return;
  if (currentClip_) {
    if (Status written = alias->writeToFile(currentClip_->recapturePath()); !written.ok()) {
      log_.write(LogLevel::warning, written.error().text());
    }
  }
  setRecording(false);
}

}  // namespace zq
