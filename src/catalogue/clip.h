#pragma once
// One scene of a tape, as it was captured once and may be captured again.

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>

#include "base/calendar_date.h"
#include "catalogue/shared_rect.h"
#include "platform/geometry.h"
#include "platform/image.h"
#include "timecode/smpte_time.h"

namespace zq {

/// What a clip is made from.
struct ClipRecord {
  std::string clipId;
  std::string clipName;
  platform::ImageValue posterImage;
  /// When the first frame was recorded.
  DateValue startDate;
  TimecodeValue startTimecode;
  TimecodeValue endTimecode;
  TimecodeValue duration;
  /// The clip's place in its sequence.
  std::int32_t index = 0;
  bool recapture = false;
  /// Frames per second of the timecodes; 0 for that of the start timecode.
  std::int32_t timebase = 0;
  /// The folder of recaptured movies.
  std::string recapturePath;
  bool isInTrash = false;
};

/// What is set here may be set from any thread; the host and the views synchronise by the main thread.
class ZQACClip {
 public:
  explicit ZQACClip(ClipRecord record);

  std::int32_t indexInSequence() const { return record_.index; }
  /// Frames per second, never 0.
  std::int32_t timebase() const { return timebase_; }
  std::int32_t durationInFrame() const { return durationInFrame_; }
  /// Whether the clip is marked to be recaptured.
  bool isRecapture() const { return record_.recapture; }
  bool isRecaptureFinished() const { return isRecaptureFinished_; }
  void setRecaptureFinished(bool finished) { isRecaptureFinished_ = finished; }
  /// Whether it is the last clip of its tape to be recaptured.
  bool isLastClip() const { return isLastClip_; }
  void setIsLastClip(bool last) { isLastClip_ = last; }
  bool isInTrash() const { return record_.isInTrash; }

  const TimecodeValue& timecodeStartClip() const { return record_.startTimecode; }
  const TimecodeValue& timecodeEndClip() const { return record_.endTimecode; }
  const TimecodeValue& clipDuration() const { return record_.duration; }
  const DateValue& dateStartClip() const { return record_.startDate; }
  /// The start and the whole seconds of the duration; null without a start.
  const DateValue& dateEndClip() const { return dateEndClip_; }
  const std::string& clipName() const { return record_.clipName; }
  const std::string& clipId() const { return record_.clipId; }
  const platform::ImageValue& posterImage() const { return record_.posterImage; }
  /// Where the recaptured movie is found: the clip's id, with the extension mov, in the folder of recaptured movies.
  std::string recapturePath() const;

  // Where the views show the clip.
  platform::Rect posInTimeline() const { return posInTimeline_.get(); }
  void setPosInTimeline(const platform::Rect& rect) { posInTimeline_.set(rect); }
  platform::Rect posterImagePos() const { return posterImagePos_.get(); }
  void setPosterImagePos(const platform::Rect& rect) { posterImagePos_.set(rect); }
  platform::Rect progressBar() const { return progressBar_.get(); }
  void setProgressBar(const platform::Rect& rect) { progressBar_.set(rect); }

 private:
  // Constant after construction.
  const ClipRecord record_;
  const std::int32_t timebase_;
  const std::int32_t durationInFrame_;
  const DateValue dateEndClip_;

  std::atomic<bool> isRecaptureFinished_ = false;
  std::atomic<bool> isLastClip_ = false;

  // Set by the main thread.
  SharedRect posInTimeline_;
  SharedRect posterImagePos_;
  SharedRect progressBar_;
};

/// Clips are compared by which object they are.
using ClipValue = std::shared_ptr<ZQACClip>;

}  // namespace zq
