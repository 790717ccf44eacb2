#pragma once
// A tape: its sequences, and which of their clips are to be recaptured.

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "catalogue/clip.h"
#include "catalogue/sequence.h"

namespace zq {

class ZQACTape {
 public:
  ZQACTape(std::int32_t tapeId, std::string tapeName, std::vector<SequenceValue> allSequences);

  /// Adds the sequences' durations to the stored total, and returns the new total: it does not start from zero.
  std::int32_t computeTotalDurationInFrame();
  /// Lists the marked clips in tape order, marks the last one of the list, and counts all clips. Once a tape: calling
  /// it again lists the clips again.
  void findClipsToBeRecapturedInTape();

  SequenceValue sequenceAtIndex(std::size_t index) const { return allSequences_.at(index); }
  void insertSequenceAtIndex(SequenceValue sequence, std::size_t index);
  void addSequence(SequenceValue sequence) { allSequences_.push_back(std::move(sequence)); }

  std::int32_t tapeId() const { return tapeId_; }
  const std::string& tapeName() const { return tapeName_; }
  /// In tape order.
  const std::vector<SequenceValue>& allSequences() const { return allSequences_; }
  const std::vector<ClipValue>& clipsToBeRecaptured() const { return clipsToBeRecaptured_; }
  std::int32_t totalDurationInFrame() const { return totalDurationInFrame_; }
  std::int32_t clipCount() const { return clipCount_; }
  void setClipCount(std::int32_t count) { clipCount_ = count; }

 private:
  const std::int32_t tapeId_;
  const std::string tapeName_;
  std::vector<SequenceValue> allSequences_;
  std::vector<ClipValue> clipsToBeRecaptured_;
  std::int32_t totalDurationInFrame_ = 0;
  std::int32_t clipCount_ = 0;
};

/// Tapes are compared by which object they are.
using TapeValue = std::shared_ptr<ZQACTape>;

}  // namespace zq
