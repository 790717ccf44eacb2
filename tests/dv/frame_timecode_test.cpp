#include "dv/frame_timecode.h"

#include <gtest/gtest.h>

#include <vector>

#include "support/dv_frames.h"

namespace zq {
namespace {

using test::FrameBytes;
using test::makeFrameBytes;
using test::timecodeOf;

std::optional<SubcodeTimecode> timecode(const FrameBytes& frame) {
  return firstTimecode(SharedBytes::copyOf(frame));
}

TEST(FrameTimecode, ComesFromTheSubcode) {
  const FrameBytes ntsc = makeFrameBytes(DVSystem::ntsc525_60, {.timecode = timecodeOf(1, 2, 3, 4)});
  EXPECT_EQ(timecode(ntsc), (SubcodeTimecode{timecodeOf(1, 2, 3, 4, 2), false}));
  const FrameBytes pal = makeFrameBytes(DVSystem::pal625_50, {.timecode = timecodeOf(1, 2, 3, 4)});
  EXPECT_EQ(timecode(pal), (SubcodeTimecode{timecodeOf(1, 2, 3, 4, 1), false}));
}

TEST(FrameTimecode, DropFrameBitCountsIn525Only) {
  const FrameStamp stamp{.timecode = timecodeOf(1, 2, 3, 4), .dropFrame = true};
  EXPECT_TRUE(timecode(makeFrameBytes(DVSystem::ntsc525_60, stamp))->dropFrame);
  EXPECT_FALSE(timecode(makeFrameBytes(DVSystem::pal625_50, stamp))->dropFrame);
}

TEST(FrameTimecode, DropFrameBitIsThatOfThePackThatWon) {
  FrameBytes frame = makeFrameBytes(DVSystem::ntsc525_60);
  test::setSubcodePack(frame, 0, 4, {0x13, 0x41, 0, 0, 0});
  test::setSubcodePack(frame, 0, 9, {0x13, 0x02, 0, 0, 0});
  EXPECT_EQ(timecode(frame), (SubcodeTimecode{timecodeOf(0, 0, 0, 2, 2), false}));
  test::setSubcodePack(frame, 0, 10, {0x13, 0x43, 0, 0, 0});
  EXPECT_EQ(timecode(frame), (SubcodeTimecode{timecodeOf(0, 0, 0, 3, 2), true}));
}

TEST(FrameTimecode, FirstSequenceThatHasOneIsTaken) {
  FrameBytes frame = makeFrameBytes(DVSystem::pal625_50);
  test::setSubcodePack(frame, 11, 0, {0x13, 0x05, 0, 0, 0});
  EXPECT_EQ(timecode(frame)->time.mFrames, 5);
  test::setSubcodePack(frame, 7, 0, {0x13, 0x06, 0, 0, 0});
  EXPECT_EQ(timecode(frame)->time.mFrames, 6);
}

TEST(FrameTimecode, UnreadableSequenceIsSkipped) {
  FrameBytes frame = makeFrameBytes(DVSystem::ntsc525_60, {.timecode = timecodeOf(1, 2, 3, 4)});
  test::setSequenceNumber(frame, 0, 15);
  test::setSectionType(frame, 1, 1, 4);
  EXPECT_EQ(timecode(frame)->time, timecodeOf(1, 2, 3, 4, 2));
  for (int sequence = 0; sequence < 10; ++sequence) test::setSequenceNumber(frame, sequence, 15);
  EXPECT_FALSE(timecode(frame));
}

TEST(FrameTimecode, TellsOfEachSequenceBeforeItIsDecoded) {
  FrameBytes frame = makeFrameBytes(DVSystem::ntsc525_60);
  test::setSubcodePack(frame, 2, 0, {0x13, 0x05, 0, 0, 0});
  std::vector<std::uint32_t> told;
  firstTimecode(SharedBytes::copyOf(frame), [&told](std::uint32_t index) { told.push_back(index); });
  EXPECT_EQ(told, (std::vector<std::uint32_t>{0, 1, 2}));
}

TEST(FrameTimecode, NoneWhereNoneIs) {
  EXPECT_FALSE(timecode(makeFrameBytes(DVSystem::ntsc525_60)));
  EXPECT_FALSE(firstTimecode(SharedBytes()));
  EXPECT_FALSE(timecode({}));
  EXPECT_FALSE(timecode(FrameBytes(11999)));
}

TEST(FrameTimecode, ShortBufferIsReadAsFarAsItHasWholeSequences) {
  FrameBytes frame = makeFrameBytes(DVSystem::ntsc525_60, {.timecode = timecodeOf(1, 2, 3, 4)});
  frame.resize(SEQUENCE_SIZE + 100);
  EXPECT_TRUE(timecode(frame));
}

}  // namespace
}  // namespace zq
