#include "backends/deck/sparse_frame.h"

#include <span>

#include "dv/dv_constants.h"

namespace zq::backend {
namespace {

// Header and two subcode blocks, then three VAUX blocks; picture and sound come after them.
constexpr std::size_t kSubcodeBytes = std::size_t{3} * BLOCKS_SIZE;
constexpr std::size_t kVauxBytes = std::size_t{3} * BLOCKS_SIZE;

std::uint32_t bitOf(std::uint32_t index) {
  return 1U << index;
}

}  // namespace

SparseFrame::SparseFrame(const TapeFile& file) : reader_(file), buffer_(std::size_t{FRAME_SIZE_625_50}) {}

Status SparseFrame::begin(std::uint64_t offset, DVSystem system) {
  offset_ = offset;
  loaded_ = 0;
  vauxLoaded_ = 0;
  sequences_ = static_cast<std::uint32_t>(sequenceCountOf(system));
  // A view without an owner, since it does not leave this object: the decoder makes handles of it for every block, and
  // counting them would cost more than decoding.
  const std::shared_ptr<const void> unowned(std::shared_ptr<const void>(), buffer_.data());
  view_ = SharedBytes(unowned, std::span(buffer_).first(frameSizeOf(system)));
  return load(0);
}

// Subcode and VAUX are read by the sequence number that the stream itself carries, which may name another sequence than
// the one it stands in.
std::uint32_t SparseFrame::namedBy(std::uint32_t index) const {
  return buffer_[std::size_t{index} * SEQUENCE_SIZE + 1] >> 4;
}

Status SparseFrame::needSequence(std::uint32_t index) {
  if (Status status = load(index); !status.ok()) return status;
  const std::uint32_t named = namedBy(index);
  return named < sequences_ ? load(named) : Status();
}

Status SparseFrame::needVaux(std::uint32_t index) {
  likelyVaux_ = index;
  const std::uint32_t named = namedBy(index);
  return named < sequences_ ? loadVaux(named) : Status();
}

// One longer read costs less than two, so the VAUX blocks come along where the frame before needed them.
Status SparseFrame::load(std::uint32_t index) {
  if ((loaded_ & bitOf(index)) != 0) return {};
  loaded_ |= bitOf(index);
  const bool withVaux = index == likelyVaux_;
  if (withVaux) vauxLoaded_ |= bitOf(index);
  return read(std::size_t{index} * SEQUENCE_SIZE, withVaux ? kSubcodeBytes + kVauxBytes : kSubcodeBytes);
}

Status SparseFrame::loadVaux(std::uint32_t index) {
  if ((vauxLoaded_ & bitOf(index)) != 0) return {};
  vauxLoaded_ |= bitOf(index);
  return read(std::size_t{index} * SEQUENCE_SIZE + kSubcodeBytes, kVauxBytes);
}

Status SparseFrame::read(std::size_t start, std::size_t length) {
  return reader_.read(std::span(buffer_).subspan(start, length), offset_ + start);
}

}  // namespace zq::backend
