#pragma once
// The clips of one continuous recording.

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "base/calendar_date.h"
#include "catalogue/clip.h"
#include "catalogue/shared_rect.h"
#include "platform/geometry.h"

namespace zq {

class ZQACSequence {
 public:
  /// `now` stands for the moment when the sequence is made, which its earliest start is sought from.
  ZQACSequence(std::string sequenceId, std::string sequenceName, std::vector<ClipValue> allClips, const DateValue& now);

  /// Adds the clips' durations to the stored total, and returns the new total: it does not start from zero.
  std::int32_t computeTotalDurationInFrame();
  /// How many clips are marked to be recaptured, finished or not. Nothing is stored.
  std::int32_t computeRecapturedClips() const;
  /// From the earliest start of a clip, or `now` when that is earlier, to the latest end, or 1970 when that is later:
  /// without clips the sequence ends before it starts.
  void findSequenceStartDateAndEndDate(const DateValue& now);

  /// In the order in which they were recorded.
  const std::vector<ClipValue>& allClips() const { return allClips_; }
  const DateValue& dateStartSequence() const { return dateStartSequence_; }
  const DateValue& dateEndSequence() const { return dateEndSequence_; }
  const std::string& sequenceName() const { return sequenceName_; }
  const std::string& sequenceId() const { return sequenceId_; }
  std::int32_t totalDurationInFrame() const { return totalDurationInFrame_; }
  /// What computeRecapturedClips() found when the sequence was made.
  std::int32_t recapturedClipsCount() const { return countOfRecapturedClips_; }

  platform::Rect posInTimeline() const { return posInTimeline_.get(); }
  void setPosInTimeline(const platform::Rect& rect) { posInTimeline_.set(rect); }
  bool isAllClipsRecaptured() const { return isAllClipsRecaptured_; }
  void setIsAllClipsRecaptured(bool recaptured) { isAllClipsRecaptured_ = recaptured; }

 private:
  // Constant after construction.
  const std::vector<ClipValue> allClips_;
  const std::string sequenceName_;
  const std::string sequenceId_;
  DateValue dateStartSequence_;
  DateValue dateEndSequence_;
  std::int32_t countOfRecapturedClips_ = 0;

  // Whoever made the sequence.
  std::int32_t totalDurationInFrame_ = 0;

  std::atomic<bool> isAllClipsRecaptured_ = false;

  // Set by the main thread.
  SharedRect posInTimeline_;
};

/// Sequences are compared by which object they are.
using SequenceValue = std::shared_ptr<ZQACSequence>;

}  // namespace zq
