#include "catalogue/sequence.h"

#include <algorithm>
#include <utility>

#include "catalogue/wrapping_sum.h"

namespace zq {
namespace {

// 1 January 1970 00:00:00 UTC.
constexpr std::int64_t kUnixEpochInReferenceSeconds = -978'307'200;

bool isEarlier(const DateValue& one, const DateValue& other) {
  return one->timeIntervalSinceDate(*other) < 0;
}

}  // namespace

ZQACSequence::ZQACSequence(std::string sequenceId, std::string sequenceName, std::vector<ClipValue> allClips,
                           const DateValue& now)
    : allClips_(std::move(allClips)), sequenceName_(std::move(sequenceName)), sequenceId_(std::move(sequenceId)) {
  computeTotalDurationInFrame();
  countOfRecapturedClips_ = computeRecapturedClips();
  findSequenceStartDateAndEndDate(now);
}

std::int32_t ZQACSequence::computeTotalDurationInFrame() {
  for (const ClipValue& clip : allClips_)
    totalDurationInFrame_ = wrappingSum(totalDurationInFrame_, clip->durationInFrame());
  return totalDurationInFrame_;
}

std::int32_t ZQACSequence::computeRecapturedClips() const {
  return static_cast<std::int32_t>(
      std::ranges::count_if(allClips_, [](const ClipValue& clip) { return clip->isRecapture(); }));
}

void ZQACSequence::findSequenceStartDateAndEndDate(const DateValue& now) {
  DateValue start = now;
  DateValue end =
      std::make_shared<const CalendarDate>(CalendarDate::fromReferenceSeconds(kUnixEpochInReferenceSeconds));
  for (const ClipValue& clip : allClips_) {
    if (!clip->dateStartClip()) continue;
    if (isEarlier(clip->dateStartClip(), start)) start = clip->dateStartClip();
    if (isEarlier(end, clip->dateEndClip())) end = clip->dateEndClip();
  }
  dateStartSequence_ = std::move(start);
  dateEndSequence_ = std::move(end);
}

}  // namespace zq
