#include "recapture/tape_search.h"

#include <algorithm>

namespace zq {
namespace {

bool isBetween(const DateValue& date, const DateValue& first, const DateValue& last) {
  return date && first && last && compareDates(date, first) >= 0 && compareDates(date, last) <= 0;
}

template <typename Range, typename Predicate>
typename Range::value_type firstOf(const Range& range, Predicate predicate) {
  const auto found = std::ranges::find_if(range, predicate);
  return found == range.end() ? nullptr : *found;
}

}  // namespace

int compareDates(const DateValue& one, const DateValue& other) {
  if (!one || !other) return 0;
  const double seconds = one->timeIntervalSinceDate(*other);
  return seconds < 0 ? -1 : seconds > 0 ? 1 : 0;
}

SequenceValue sequenceOnDate(const ZQACTape& tape, const DateValue& date) {
  return firstOf(tape.allSequences(), [&](const SequenceValue& sequence) {
    return !sequence->isAllClipsRecaptured() &&
           isBetween(date, sequence->dateStartSequence(), sequence->dateEndSequence());
  });
}

ClipValue otherClipOnDate(const ZQACSequence& sequence, const DateValue& date, const ClipValue& current) {
  return firstOf(sequence.allClips(), [&](const ClipValue& clip) {
    return clip != current && isBetween(date, clip->dateStartClip(), clip->dateEndClip());
  });
}

ClipValue nextClipToBeRecaptured(const ZQACSequence& sequence) {
  return firstOf(sequence.allClips(),
                 [](const ClipValue& clip) { return clip->isRecapture() && !clip->isRecaptureFinished(); });
}

ClipValue clipBefore(const SequenceValue& sequence, const ClipValue& clip) {
  if (!sequence || !clip || clip->indexInSequence() < 1) return nullptr;
  const auto index = static_cast<std::size_t>(clip->indexInSequence()) - 1;
  return index < sequence->allClips().size() ? sequence->allClips()[index] : nullptr;
}

}  // namespace zq
