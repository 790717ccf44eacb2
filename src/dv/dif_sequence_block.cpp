// The ID of a DIF block:
//
//   byte  bits  field
//   0     7-5   section type SCT
//   1     7-4   sequence number Dseq
//   1     3     channel FSC
//   2     7-0   block number DBN

#include "dv/dif_sequence_block.h"

#include <array>
#include <cstddef>
#include <utility>

#include "dv/dv_constants.h"

namespace zq {

DVDifSequenceBlock DVDifSequenceBlock::initWithDataForSequenceIndexBlockIndex(SharedBytes data,
                                                                              std::uint32_t sequenceIndex,
                                                                              std::uint32_t blockIndex) {
  DVDifSequenceBlock block;
  block.sequenceIndex_ = sequenceIndex;
  block.blockIndex_ = blockIndex;
  block.setData(std::move(data));
  return block;
}

void DVDifSequenceBlock::setData(SharedBytes data) {
  if (!data_.sameBufferAs(data)) data_ = std::move(data);
  decodeBlock();
}

void DVDifSequenceBlock::decodeBlock() {
  decodeHeader();
}

void DVDifSequenceBlock::decodeHeader() {
  constexpr std::uint32_t kBlocks = BLOCKS_PER_SEQUENCE;
  constexpr std::uint32_t kSize = BLOCKS_SIZE;
  offset_ = (sequenceIndex_ * kBlocks + blockIndex_) * kSize;
  if (!data_) return;

  std::array<std::uint8_t, 3> id{};
  data_.getBytes(id, offset_);
  sectionType_ = id[0] >> 5;
  sequenceChannel_ = (id[1] >> 3) & 1U;
  sequenceNumber_ = id[1] >> 4;
  blockNumber_ = id[2];
}

void DVDifSequenceBlock::getBytesStartLength(std::uint8_t* destination, std::uint32_t start,
                                             std::uint32_t length) const {
  // In a wide sum, as a start past the end shall be out of range and not wrap to a place inside the buffer.
  data_.getBytes({destination, length}, std::size_t{offset_} + start);
}

}  // namespace zq
