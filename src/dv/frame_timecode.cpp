#include "dv/frame_timecode.h"

#include <cstddef>
#include <cstdint>
#include <stdexcept>

#include "dv/dif_sequence.h"
#include "dv/dv_constants.h"
#include "dv/pack.h"

namespace zq {
namespace {

constexpr std::uint8_t kDropFrameBit = 0x40;
constexpr std::uint32_t kTimecodeType30DropFrame = 2;

/// The drop-frame bit of the timecode pack that the sequence took its timecode from, which is its last one.
bool dropFrameBitOf(const DVDifSequence& sequence) {
  bool dropFrame = false;
  for (const std::uint32_t blockIndex : {1U, 2U}) {
    const DVDifSequenceBlock block = sequence.getBlockAt(blockIndex);
    for (const std::uint32_t start : kSubcodePackStarts) {
      Pack pack{};
      block.getBytesStartLength(pack.data(), start, static_cast<std::uint32_t>(pack.size()));
      if (pack[0] == kTimecodePack) dropFrame = (pack[1] & kDropFrameBit) != 0;
    }
  }
  return dropFrame;
}

std::optional<SubcodeTimecode> timecodeOfSequence(const SharedBytes& frame, std::uint32_t index) {
  DVDifSequence sequence(frame, index);
  sequence.decodeSequenceBasics();
  sequence.decodeSubCodeSection();
  if (!sequence.timecodeOk()) return std::nullopt;
  const SMPTETime time = sequence.timeCode();
  return SubcodeTimecode{time, time.mType == kTimecodeType30DropFrame && dropFrameBitOf(sequence)};
}

}  // namespace

std::optional<SubcodeTimecode> firstTimecode(const SharedBytes& frame,
                                             const std::function<void(std::uint32_t)>& beforeSequence) {
  const std::size_t count = frame.size() / SEQUENCE_SIZE;
  for (std::uint32_t index = 0; index < count; ++index) {
    if (beforeSequence) beforeSequence(index);
    try {
      if (const auto timecode = timecodeOfSequence(frame, index)) return timecode;
    } catch (const std::out_of_range&) {
      continue;
    }
  }
  return std::nullopt;
}

}  // namespace zq
