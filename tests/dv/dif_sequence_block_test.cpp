#include "dv/dif_sequence_block.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <limits>
#include <memory>
#include <stdexcept>
#include <vector>

namespace zq {
namespace {

DVDifSequenceBlock blockOf(const SharedBytes& data, std::uint32_t sequence, std::uint32_t block) {
  return DVDifSequenceBlock::initWithDataForSequenceIndexBlockIndex(data, sequence, block);
}

/// One block that begins with these ID bytes.
SharedBytes bufferWithId(std::array<std::uint8_t, 3> id) {
  std::vector<std::uint8_t> bytes(80);
  std::copy(id.begin(), id.end(), bytes.begin());
  return SharedBytes::copyOf(bytes);
}

TEST(DifSequenceBlock, OffsetCountsBlocksOfAllSequencesBefore) {
  const SharedBytes frame = SharedBytes::copyOf(std::vector<std::uint8_t>(144000));
  EXPECT_EQ(blockOf(frame, 0, 0).offset(), 0U);
  EXPECT_EQ(blockOf(frame, 1, 3).offset(), 12240U);
  EXPECT_EQ(blockOf(frame, 11, 149).offset(), 143920U);
}

TEST(DifSequenceBlock, OffsetIsStoredWithoutABuffer) {
  const DVDifSequenceBlock block = blockOf(SharedBytes(), 1, 3);
  EXPECT_EQ(block.offset(), 12240U);
  EXPECT_EQ(block.sectionType(), 0);
  EXPECT_EQ(block.sequenceNumber(), 0U);
  EXPECT_EQ(block.sequenceChannel(), 0U);
  EXPECT_EQ(block.blockNumber(), 0U);
}

TEST(DifSequenceBlock, DecodesTheSectionType) {
  const auto typeOf = [](std::uint8_t id) { return blockOf(bufferWithId({id, 0, 0}), 0, 0).sectionType(); };
  EXPECT_EQ(typeOf(0x00), 0);
  EXPECT_EQ(typeOf(0x1F), 0);
  EXPECT_EQ(typeOf(0x3F), 1);
  EXPECT_EQ(typeOf(0x5F), 2);
  EXPECT_EQ(typeOf(0x7F), 3);
  EXPECT_EQ(typeOf(0x9F), 4);
  EXPECT_EQ(typeOf(0xFF), 7);
}

TEST(DifSequenceBlock, DecodesSequenceNumberChannelAndBlockNumber) {
  const DVDifSequenceBlock first = blockOf(bufferWithId({0x9F, 0x57, 134}), 0, 0);
  EXPECT_EQ(first.sequenceNumber(), 5U);
  EXPECT_EQ(first.sequenceChannel(), 0U);
  EXPECT_EQ(first.blockNumber(), 134U);
  const DVDifSequenceBlock second = blockOf(bufferWithId({0x9F, 0x5F, 255}), 0, 0);
  EXPECT_EQ(second.sequenceNumber(), 5U);
  EXPECT_EQ(second.sequenceChannel(), 1U);
  EXPECT_EQ(second.blockNumber(), 255U);
  EXPECT_EQ(blockOf(bufferWithId({0x1F, 0xB7, 0}), 0, 0).sequenceNumber(), 11U);
}

TEST(DifSequenceBlock, CopiesBytesCountedFromItsFirst) {
  std::vector<std::uint8_t> bytes(240);
  bytes[80 + 6] = 0x13;
  bytes[80 + 7] = 0x24;
  const DVDifSequenceBlock block = blockOf(SharedBytes::copyOf(bytes), 0, 1);
  std::array<std::uint8_t, 2> copied{};
  block.getBytesStartLength(copied.data(), 6, 2);
  EXPECT_EQ(copied, (std::array<std::uint8_t, 2>{0x13, 0x24}));
}

TEST(DifSequenceBlock, SameBufferIsDecodedAgainButHeldOnce) {
  // The owner stays writable here, so that a second decoding shows.
  const auto bytes = std::make_shared<std::vector<std::uint8_t>>(80);
  const SharedBytes buffer(bytes, *bytes);
  DVDifSequenceBlock block = blockOf(buffer, 0, 0);
  const long held = buffer.useCount();
  (*bytes)[0] = 0x3F;
  block.setData(buffer);
  EXPECT_EQ(block.sectionType(), 1);
  EXPECT_EQ(buffer.useCount(), held);
}

TEST(DifSequenceBlock, AnotherBufferReplacesTheFirst) {
  const SharedBytes first = bufferWithId({0x3F, 0x57, 1});
  const SharedBytes second = bufferWithId({0x5F, 0x67, 2});
  DVDifSequenceBlock block = blockOf(first, 0, 0);
  const long held = first.useCount();
  block.setData(second);
  EXPECT_EQ(first.useCount(), held - 1);
  EXPECT_EQ(block.sectionType(), 2);
  EXPECT_EQ(block.sequenceNumber(), 6U);
  EXPECT_EQ(block.blockNumber(), 2U);
}

TEST(DifSequenceBlock, LosingTheBufferKeepsTheDecodedFields) {
  DVDifSequenceBlock block = blockOf(bufferWithId({0x3F, 0x5F, 7}), 0, 0);
  block.setData(SharedBytes());
  EXPECT_EQ(block.sectionType(), 1);
  EXPECT_EQ(block.sequenceNumber(), 5U);
  EXPECT_EQ(block.sequenceChannel(), 1U);
  EXPECT_EQ(block.blockNumber(), 7U);
}

TEST(DifSequenceBlock, ReadingPastTheEndIsOutOfRange) {
  const SharedBytes buffer = bufferWithId({0x3F, 0x57, 0});
  EXPECT_THROW(blockOf(buffer, 0, 1), std::out_of_range);
  EXPECT_THROW(blockOf(buffer, 15, 149), std::out_of_range);
  const DVDifSequenceBlock block = blockOf(buffer, 0, 0);
  std::array<std::uint8_t, 5> pack{};
  EXPECT_NO_THROW(block.getBytesStartLength(pack.data(), 75, 5));
  EXPECT_THROW(block.getBytesStartLength(pack.data(), 76, 5), std::out_of_range);
}

TEST(DifSequenceBlock, AHugeStartDoesNotWrapIntoTheBuffer) {
  const DVDifSequenceBlock block = blockOf(SharedBytes::copyOf(std::vector<std::uint8_t>(160)), 0, 1);
  std::array<std::uint8_t, 5> pack{};
  EXPECT_THROW(block.getBytesStartLength(pack.data(), std::numeric_limits<std::uint32_t>::max() - 9, 5),
               std::out_of_range);
}

}  // namespace
}  // namespace zq
