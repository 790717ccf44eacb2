#include "backends/deck/frame_faults.h"

#include <algorithm>
#include <memory>
#include <vector>

#include "dv/dv_constants.h"

// What is spoiled, by the byte in a sequence of 150 blocks of 80 bytes:
//   blocks 1 and 2   subcode: six packs each, at bytes 6, 14, ... 46; 0x62 is the recording date, 0x63 the time
//   blocks 6 to 149  audio and video; the high nibble of byte 3 of a video block is its error status

namespace zq::backend {
namespace {

constexpr std::size_t kSequence = SEQUENCE_SIZE;
constexpr std::size_t kBlock = BLOCKS_SIZE;

using Copy = std::shared_ptr<std::vector<std::uint8_t>>;

Copy copyOf(const SharedBytes& frame) {
  return std::make_shared<std::vector<std::uint8_t>>(frame.bytes().begin(), frame.bytes().end());
}

SharedBytes sealed(const Copy& copy) {
  return SharedBytes(copy, *copy);
}

}  // namespace

bool FrameFaults::strikes(double probability) {
  return probability > 0 && std::uniform_real_distribution<double>(0, 1)(random_) < probability;
}

std::optional<SharedBytes> FrameFaults::pass(const SharedBytes& frame, bool searching) {
  if (strikes(faults_.droppedFrames)) return std::nullopt;
  SharedBytes out = frame;
  if (strikes(faults_.damagedFrames)) out = damaged(out);
  if (strikes(faults_.undatedFrames)) out = undated(out);
  if (searching && strikes(faults_.staleSearchFrames)) out = stale(out);
  if (faults_.staleSearchFrames > 0) previous_ = frame;
  return out;
}

// A clogged head: one sequence is lost whole, and every other video block of the rest says that it is concealed.
SharedBytes FrameFaults::damaged(const SharedBytes& frame) {
  const Copy copy = copyOf(frame);
  const std::size_t sequences = copy->size() / kSequence;
  if (sequences == 0) return frame;
  const std::size_t lost = std::uniform_int_distribution<std::size_t>(0, sequences - 1)(random_);
  std::fill_n(copy->begin() + static_cast<std::ptrdiff_t>(lost * kSequence), kSequence, std::uint8_t{0});
  for (std::size_t block = 7; block < copy->size() / kBlock; block += 2) {
    std::uint8_t* bytes = copy->data() + block * kBlock;
    if (bytes[0] >> 5 == 4) bytes[3] = static_cast<std::uint8_t>(0xA0 | (bytes[3] & 0x0F));
  }
  return sealed(copy);
}

SharedBytes FrameFaults::undated(const SharedBytes& frame) {
  const Copy copy = copyOf(frame);
  for (std::size_t sequence = 0; sequence + kSequence <= copy->size(); sequence += kSequence) {
    for (std::size_t pack = 0; pack < 12; ++pack) {
      std::uint8_t* bytes = copy->data() + sequence + (1 + pack / 6) * kBlock + 6 + (pack % 6) * 8;
      if (bytes[0] == 0x62 || bytes[0] == 0x63) std::fill_n(bytes, 5, std::uint8_t{0xFF});
    }
  }
  return sealed(copy);
}

SharedBytes FrameFaults::stale(const SharedBytes& frame) const {
  if (!previous_ || previous_.size() != frame.size()) return frame;
  const Copy copy = copyOf(frame);
  const std::size_t half = copy->size() / kSequence / 2 * kSequence;
  std::copy_n(previous_.data() + half, copy->size() - half, copy->data() + half);
  return sealed(copy);
}

}  // namespace zq::backend
