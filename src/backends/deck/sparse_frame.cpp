#include "backends/deck/sparse_frame.h"

#include <span>

#include "dv/dv_constants.h"

namespace zq::backend {
namespace {

// Header, two subcode and three VAUX blocks; the picture and the sound come after them.
constexpr std::size_t kSmallBlocks = 6 * BLOCKS_SIZE;

}  // namespace

SparseFrame::SparseFrame(const TapeFile& file)
    : file_(file), buffer_(std::make_shared<std::vector<std::uint8_t>>(std::size_t{FRAME_SIZE_625_50})) {}

Status SparseFrame::begin(std::uint64_t offset, DVSystem system) {
  offset_ = offset;
  loaded_ = 0;
  sequences_ = static_cast<std::uint32_t>(sequenceCountOf(system));
  if (view_.size() != frameSizeOf(system)) view_ = SharedBytes(buffer_, std::span(*buffer_).first(frameSizeOf(system)));
  return load(0);
}

// Subcode and VAUX are read by the sequence number that the stream itself carries, which may name another sequence than
// the one it stands in.
Status SparseFrame::needSequence(std::uint32_t index) {
  if (Status status = load(index); !status.ok()) return status;
  const std::uint32_t named = (*buffer_)[std::size_t{index} * SEQUENCE_SIZE + 1] >> 4;
  return named < sequences_ ? load(named) : Status();
}

Status SparseFrame::load(std::uint32_t index) {
  if ((loaded_ >> index & 1U) != 0) return {};
  loaded_ |= 1U << index;
  const std::size_t start = std::size_t{index} * SEQUENCE_SIZE;
  return file_.read(std::span(*buffer_).subspan(start, kSmallBlocks), offset_ + start);
}

}  // namespace zq::backend
