#include "dv/frame_stamp.h"

#include <gtest/gtest.h>

#include <array>

#include "dv/dif_sequence.h"
#include "dv/frame_timecode.h"
#include "dv/recording_date_scan.h"
#include "support/dv_frames.h"

namespace zq {
namespace {

using test::blockAt;
using test::FrameBytes;
using test::makeFrameBytes;
using test::timecodeOf;

constexpr StampDateTime kStamped{2004, 7, 15, 13, 30, 45};

Pack subcodePack(FrameBytes& frame, int sequence, int slot) {
  Pack pack{};
  const auto block = blockAt(frame, sequence, 1 + slot / 6);
  std::copy_n(block.begin() + kSubcodePackStarts[static_cast<std::size_t>(slot % 6)], pack.size(), pack.begin());
  return pack;
}

DVDifSequence decoded(const FrameBytes& frame, int sequence) {
  DVDifSequence result(SharedBytes::copyOf(frame), static_cast<std::uint32_t>(sequence));
  result.decodeSequence();
  return result;
}

/// Section type, sequence number, channel and block number of every block.
std::vector<std::array<int, 4>> idsOf(std::span<const std::uint8_t> frame) {
  std::vector<std::array<int, 4>> ids;
  for (std::size_t start = 0; start < frame.size(); start += BLOCKS_SIZE) {
    ids.push_back({frame[start] >> 5, frame[start + 1] >> 4, frame[start + 1] >> 3 & 1, frame[start + 2]});
  }
  return ids;
}

TEST(FrameSkeleton, HasTheBlockIdsOfRealFrames) {
  const std::string fixtures = DECKHAND_FIXTURES;
  const auto ntsc = test::framesOf(fixtures + "/sony-digital8-ntsc-1-frame.dv", DVSystem::ntsc525_60);
  EXPECT_EQ(idsOf(makeFrameBytes(DVSystem::ntsc525_60)), idsOf(ntsc.at(0).bytes()));
  const auto pal = test::framesOf(fixtures + "/pal-undated-15-frames.dv", DVSystem::pal625_50);
  EXPECT_EQ(idsOf(makeFrameBytes(DVSystem::pal625_50)), idsOf(pal.at(0).bytes()));
}

TEST(FrameSkeleton, SaysNothingButItsSystemAndFourToThree) {
  for (const DVSystem system : {DVSystem::ntsc525_60, DVSystem::pal625_50}) {
    FrameBytes frame(frameSizeOf(system), 0xA5);
    writeFrameSkeleton(frame, system);
    for (int index = 0; index < sequenceCountOf(system); ++index) {
      const DVDifSequence sequence = decoded(frame, index);
      EXPECT_EQ(sequence.timeCode().mType, system == DVSystem::pal625_50 ? 1U : 2U);
      EXPECT_FALSE(sequence.timecodeOk());
      EXPECT_EQ(sequence.captureDateTime(), nullptr);
      EXPECT_EQ(sequence.aspectRatio(), 1);
      EXPECT_EQ(sequence.pixelSampling(), 0);
      EXPECT_FALSE(sequence.stillPicture());
    }
  }
}

TEST(FrameSkeleton, OverwritesEverythingThatWasThere) {
  FrameBytes zero(120000, 0x00);
  FrameBytes ones(120000, 0xFF);
  writeFrameSkeleton(zero, DVSystem::ntsc525_60);
  writeFrameSkeleton(ones, DVSystem::ntsc525_60);
  EXPECT_EQ(zero, ones);
}

TEST(FrameStampTest, WritesPacksAsACamcorderDoes) {
  // The bytes of the packs are those that the Digital8 fixture has for the same numbers.
  FrameBytes frame = makeFrameBytes(
      DVSystem::ntsc525_60,
      {.timecode = timecodeOf(0, 0, 2, 17), .dropFrame = true, .dateTime = StampDateTime{2024, 7, 8, 19, 55, 58}});
  EXPECT_EQ(subcodePack(frame, 0, 0), (Pack{0x13, 0xD7, 0x82, 0x80, 0xC0}));
  EXPECT_EQ(subcodePack(frame, 5, 1), (Pack{0x62, 0xFF, 0xC8, 0xE7, 0x24}));
  EXPECT_EQ(subcodePack(frame, 5, 2), (Pack{0x63, 0xFF, 0xD8, 0xD5, 0xD9}));
}

TEST(FrameStampTest, TimecodeFillsTheFirstHalfAndTheDateIsInTheSecond) {
  for (const DVSystem system : {DVSystem::ntsc525_60, DVSystem::pal625_50}) {
    FrameBytes frame = makeFrameBytes(system, {.timecode = timecodeOf(1, 2, 3, 4), .dateTime = kStamped});
    constexpr std::array<int, 3> kSecondHalf{0x13, 0x62, 0x63};
    const int count = sequenceCountOf(system);
    for (int sequence = 0; sequence < count; ++sequence) {
      for (int slot = 0; slot < kSubcodeSlotsPerSequence; ++slot) {
        const int expected = sequence < count / 2 ? 0x13 : kSecondHalf[static_cast<std::size_t>(slot % 3)];
        ASSERT_EQ(subcodePack(frame, sequence, slot)[0], expected) << sequence << "/" << slot;
      }
    }
    EXPECT_EQ(decoded(frame, count / 2 - 1).date(), nullptr);
    EXPECT_NE(decoded(frame, count / 2).date(), nullptr);
  }
}

TEST(FrameStampTest, WhatIsWrittenIsReadBack) {
  for (const DVSystem system : {DVSystem::ntsc525_60, DVSystem::pal625_50}) {
    const FrameStamp stamp{
        .timecode = timecodeOf(23, 59, 58, 21), .dropFrame = true, .dateTime = kStamped, .aspect = 0};
    const SharedBytes frame = test::makeFrame(system, stamp);
    EXPECT_EQ(firstTimecode(frame)->time, timecodeOf(23, 59, 58, 21, system == DVSystem::pal625_50 ? 1 : 2));
    EXPECT_EQ(scanRecordingDate(frame).date->isoString(), "2004-07-15T13:30:45");
    EXPECT_EQ(scanRecordingDate(frame).aspectRatio, 0);
  }
}

TEST(FrameStampTest, UnsetPartsBecomePacksWithoutInformation) {
  FrameBytes frame = makeFrameBytes(DVSystem::ntsc525_60, {.timecode = timecodeOf(1, 2, 3, 4), .dateTime = kStamped});
  stampFrame(frame, {.timecode = timecodeOf(5, 6, 7, 8)});
  EXPECT_EQ(firstTimecode(SharedBytes::copyOf(frame))->time, timecodeOf(5, 6, 7, 8, 2));
  EXPECT_EQ(scanRecordingDate(SharedBytes::copyOf(frame)).date, nullptr);
  stampFrame(frame, {});
  for (int sequence = 0; sequence < 10; ++sequence) {
    for (int slot = 0; slot < kSubcodeSlotsPerSequence; ++slot) {
      ASSERT_EQ(subcodePack(frame, sequence, slot), kNoInformationPack);
    }
  }
}

TEST(FrameStampTest, AspectRatioIsWrittenToEverySequence) {
  FrameBytes frame = makeFrameBytes(DVSystem::pal625_50, {.aspect = 0});
  for (int sequence = 0; sequence < 12; ++sequence) EXPECT_EQ(decoded(frame, sequence).aspectRatio(), 0);
  stampFrame(frame, {});
  for (int sequence = 0; sequence < 12; ++sequence) EXPECT_EQ(decoded(frame, sequence).aspectRatio(), 0);
  stampFrame(frame, {.aspect = 1});
  for (int sequence = 0; sequence < 12; ++sequence) EXPECT_EQ(decoded(frame, sequence).aspectRatio(), 1);
}

TEST(FrameStampTest, PictureAndSoundAreLeftAlone) {
  const auto fixture =
      test::framesOf(std::string(DECKHAND_FIXTURES) + "/sony-digital8-ntsc-1-frame.dv", DVSystem::ntsc525_60);
  const auto before = fixture.at(0).bytes();
  FrameBytes frame(before.begin(), before.end());
  stampFrame(frame, {.timecode = timecodeOf(1, 2, 3, 4), .dateTime = kStamped, .aspect = 0});
  EXPECT_EQ(scanRecordingDate(SharedBytes::copyOf(frame)).date->isoString(), "2004-07-15T13:30:45");
  for (std::size_t at = 0; at < frame.size(); ++at) {
    if (at % SEQUENCE_SIZE / BLOCKS_SIZE < 6) continue;
    ASSERT_EQ(frame[at], before[at]) << at;
  }
}

}  // namespace
}  // namespace zq
