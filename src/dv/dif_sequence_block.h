#pragma once
// A view onto one 80-byte DIF block inside the bytes of a whole DV frame.

#include <cstdint>

#include "base/shared_bytes.h"

namespace zq {

/// Holds a handle of the frame, no copy. Nothing is checked before reading: std::out_of_range of the buffer leaves
/// every operation that reads when the block is not inside it.
class DVDifSequenceBlock {
 public:
  DVDifSequenceBlock() = default;

  /// The block `blockIndex` (0..149) of the sequence `sequenceIndex`, its ID decoded.
  static DVDifSequenceBlock initWithDataForSequenceIndexBlockIndex(SharedBytes data, std::uint32_t sequenceIndex,
                                                                   std::uint32_t blockIndex);

  /// Takes the buffer when it is another one, and decodes the block in every case.
  void setData(SharedBytes data);
  void decodeBlock();
  /// Computes the offset and decodes the ID. Without a buffer the decoded fields stay as they are.
  void decodeHeader();

  /// Copies `length` bytes from `start`, counted from the block's first byte.
  void getBytesStartLength(std::uint8_t* destination, std::uint32_t start, std::uint32_t length) const;

  /// Bytes from the start of the frame to this block.
  std::uint32_t offset() const { return offset_; }
  /// 0 header, 1 subcode, 2 VAUX, 3 audio, 4 video.
  std::int32_t sectionType() const { return sectionType_; }
  std::uint32_t blockNumber() const { return blockNumber_; }
  std::uint32_t sequenceNumber() const { return sequenceNumber_; }
  std::uint32_t sequenceChannel() const { return sequenceChannel_; }

 private:
  SharedBytes data_;
  std::int32_t sectionType_ = 0;
  std::uint32_t blockNumber_ = 0;
  std::uint32_t sequenceNumber_ = 0;
  std::uint32_t sequenceChannel_ = 0;
  std::uint32_t sequenceIndex_ = 0;
  std::uint32_t blockIndex_ = 0;
  std::uint32_t offset_ = 0;
};

}  // namespace zq
