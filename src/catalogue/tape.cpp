#include "catalogue/tape.h"

#include <stdexcept>
#include <utility>

#include "catalogue/wrapping_sum.h"

namespace zq {

ZQACTape::ZQACTape(std::int32_t tapeId, std::string tapeName, std::vector<SequenceValue> allSequences)
    : tapeId_(tapeId), tapeName_(std::move(tapeName)), allSequences_(std::move(allSequences)) {
  computeTotalDurationInFrame();
}

std::int32_t ZQACTape::computeTotalDurationInFrame() {
  for (const SequenceValue& sequence : allSequences_) {
    totalDurationInFrame_ = wrappingSum(totalDurationInFrame_, sequence->totalDurationInFrame());
  }
  return totalDurationInFrame_;
}

void ZQACTape::findClipsToBeRecapturedInTape() {
  std::int32_t count = 0;
  for (const SequenceValue& sequence : allSequences_) {
    for (const ClipValue& clip : sequence->allClips()) {
      ++count;
      if (clip->isRecapture()) clipsToBeRecaptured_.push_back(clip);
    }
  }
  if (!clipsToBeRecaptured_.empty()) clipsToBeRecaptured_.back()->setIsLastClip(true);
  setClipCount(count);
}

void ZQACTape::insertSequenceAtIndex(SequenceValue sequence, std::size_t index) {
  if (index > allSequences_.size()) throw std::out_of_range("no place for a sequence at this index");
  allSequences_.insert(allSequences_.begin() + static_cast<std::ptrdiff_t>(index), std::move(sequence));
}

}  // namespace zq
