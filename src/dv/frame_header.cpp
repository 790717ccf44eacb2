// The start of a frame:
//
//   block  byte  bits  is
//   0      0     7-5   000, the header section
//   0      1     7-4   0000, sequence 0
//   0      1     3     FSC, 1 in the second half of a 50 Mbit/s frame
//   0      2     7-0   0, block 0 of its section
//   0      3     7     DSF, 1 = 625/50
//   0      3     6-0   0111111
//   1, 2   0     7-5   001, the subcode section

#include "dv/frame_header.h"

#include "dv/dv_constants.h"

namespace zq {
namespace {

int sectionTypeOfBlock(std::span<const std::uint8_t> frame, std::size_t block) {
  return frame[block * BLOCKS_SIZE] >> 5;
}

}  // namespace

bool looksLikeFrameHeader(std::span<const std::uint8_t> first) {
  if (first.size() < kFrameHeaderSize) return false;
  const bool startsSequenceZero = sectionTypeOfBlock(first, 0) == 0 && first[1] >> 4 == 0 && first[2] == 0;
  const bool hasFixedBits = (first[3] & 0x7F) == 0x3F;
  return startsSequenceZero && hasFixedBits && sectionTypeOfBlock(first, 1) == 1 && sectionTypeOfBlock(first, 2) == 1;
}

DVSystem systemOfHeader(std::span<const std::uint8_t> first) {
  return (first[3] & 0x80) != 0 ? DVSystem::pal625_50 : DVSystem::ntsc525_60;
}

bool isSecondChannel(std::span<const std::uint8_t> first) {
  return (first[1] & 0x08) != 0;
}

}  // namespace zq
