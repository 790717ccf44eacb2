#include "dv/frame_header.h"

#include <gtest/gtest.h>

#include "support/dv_frames.h"

namespace zq {
namespace {

using test::FrameBytes;
using test::makeFrameBytes;

TEST(FrameHeader, IsFoundAtTheStartOfEveryFrame) {
  for (const DVSystem system : {DVSystem::ntsc525_60, DVSystem::pal625_50}) {
    const FrameBytes frame = makeFrameBytes(system);
    EXPECT_TRUE(looksLikeFrameHeader(frame));
    EXPECT_EQ(systemOfHeader(frame), system);
    EXPECT_FALSE(isSecondChannel(frame));
  }
}

TEST(FrameHeader, NoOtherBlockOfAFrameLooksLikeOne) {
  const FrameBytes frame = makeFrameBytes(DVSystem::pal625_50);
  for (std::size_t start = BLOCKS_SIZE; start + kFrameHeaderSize <= frame.size(); start += BLOCKS_SIZE) {
    ASSERT_FALSE(looksLikeFrameHeader(std::span(frame).subspan(start))) << start;
  }
}

TEST(FrameHeader, NeedsThreeBlocks) {
  const FrameBytes frame = makeFrameBytes(DVSystem::ntsc525_60);
  EXPECT_TRUE(looksLikeFrameHeader(std::span(frame).first(240)));
  EXPECT_FALSE(looksLikeFrameHeader(std::span(frame).first(239)));
  EXPECT_FALSE(looksLikeFrameHeader({}));
}

TEST(FrameHeader, EveryFixedFieldCounts) {
  const auto looksLikeOneWith = [](std::size_t at, std::uint8_t byte) {
    FrameBytes frame = makeFrameBytes(DVSystem::ntsc525_60);
    frame[at] = byte;
    return looksLikeFrameHeader(frame);
  };
  EXPECT_FALSE(looksLikeOneWith(0, 0x3F));
  EXPECT_FALSE(looksLikeOneWith(1, 0x17));
  EXPECT_FALSE(looksLikeOneWith(2, 1));
  EXPECT_FALSE(looksLikeOneWith(3, 0x7F));
  EXPECT_FALSE(looksLikeOneWith(3, 0x3E));
  EXPECT_FALSE(looksLikeOneWith(80, 0x5F));
  EXPECT_FALSE(looksLikeOneWith(160, 0x1F));
  EXPECT_TRUE(looksLikeOneWith(3, 0xBF));
}

TEST(FrameHeader, SecondHalfOfFiftyMegabitIsTold) {
  FrameBytes frame = makeFrameBytes(DVSystem::ntsc525_60);
  frame[1] = static_cast<std::uint8_t>(frame[1] | 0x08);
  EXPECT_TRUE(looksLikeFrameHeader(frame));
  EXPECT_TRUE(isSecondChannel(frame));
}

}  // namespace
}  // namespace zq
