#pragma once
// A frame of a tape file of which only the few blocks are read that say what it is: the first six of a sequence at
// most.

#include <cstdint>
#include <memory>
#include <vector>

#include "backends/deck/frame_index.h"
#include "backends/deck/tape_reader.h"
#include "base/shared_bytes.h"
#include "base/status.h"

namespace zq::backend {

/// One thread, the same throughout. The buffer is used again for each frame.
class SparseFrame {
 public:
  explicit SparseFrame(const TapeFile& file);
  SparseFrame(const SparseFrame&) = delete;
  SparseFrame& operator=(const SparseFrame&) = delete;

  /// Begins with another frame: reads what its first sequence has and forgets the others.
  Status begin(std::uint64_t offset, DVSystem system);
  /// Reads header and subcode of sequence `index`, and those of the sequence that its header names, unless they are
  /// there.
  Status needSequence(std::uint32_t index);
  /// Reads the VAUX blocks of sequence `index` likewise.
  Status needVaux(std::uint32_t index);
  /// Fails when the file became shorter meanwhile, with what was read of it last perhaps zeros.
  Status checkFile() const { return reader_.checkFile(); }
  /// As large as the frame. What was not asked for holds what an earlier frame left there. Valid as long as this
  /// object.
  const SharedBytes& bytes() const { return view_; }

 private:
  Status load(std::uint32_t index);
  Status loadVaux(std::uint32_t index);
  Status read(std::size_t start, std::size_t length);
  std::uint32_t namedBy(std::uint32_t index) const;

  TapeReader reader_;
  std::vector<std::uint8_t> buffer_;
  std::uint64_t offset_ = 0;
  std::uint32_t sequences_ = 0;
  std::uint32_t loaded_ = 0;      // a bit for each sequence
  std::uint32_t vauxLoaded_ = 0;  // likewise
  std::uint32_t likelyVaux_ = 0;  // the sequence whose VAUX the last frame needed
  SharedBytes view_;
};

}  // namespace zq::backend
