#include "dv/dif_sequence.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

#include "dv/frame_capture_date_time.h"
#include "support/dv_frames.h"
#include "support/dv_recording_log.h"
#include "support/dv_sequences.h"
#include "timecode/timecode_text.h"

namespace zq {
namespace {

using test::blockAt;
using test::decodedSequence;
using test::expectDate;
using test::FrameBytes;
using test::frameWithPack;
using test::kDate20241231;
using test::makeFrameBytes;
using test::setSectionType;
using test::setSequenceNumber;
using test::setSubcodePack;
using test::timecodeOf;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(DifSequence, FreshOneHasItsDefaults) {
  const DVDifSequence sequence(test::makeFrame(DVSystem::ntsc525_60), 3);
  EXPECT_FALSE(sequence.decoded());
  EXPECT_EQ(sequence.offset(), 36000U);
  EXPECT_EQ(sequence.timeCode(), nullTimecode);
  EXPECT_FALSE(sequence.timecodeOk());
  EXPECT_FALSE(sequence.systemOk());
  EXPECT_EQ(sequence.captureDateTime(), nullptr);
  EXPECT_EQ(sequence.date(), nullptr);
  EXPECT_EQ(sequence.pixelSampling(), -1);
  EXPECT_FALSE(sequence.stillPicture());
  EXPECT_FALSE(sequence.interlaced());
  EXPECT_EQ(sequence.sectionCode(), "UNSET");
}

TEST(DifSequence, UndecodedAspectRatioIsSixteenToNine) {
  EXPECT_EQ(DVDifSequence(test::makeFrame(DVSystem::ntsc525_60), 0).aspectRatio(), 0);
  FrameBytes frame = makeFrameBytes(DVSystem::ntsc525_60);
  setSectionType(frame, 0, 5, 3);
  EXPECT_EQ(decodedSequence(frame, 0).aspectRatio(), 0);
  EXPECT_EQ(decodedSequence(frame, 0).pixelSampling(), -1);
}

TEST(DifSequence, FactoryMakesTheSame) {
  const FrameBytes frame = makeFrameBytes(DVSystem::pal625_50);
  DVDifSequence sequence = DVDifSequence::difSequenceWithDataForSequenceIndex(SharedBytes::copyOf(frame), 2);
  EXPECT_EQ(sequence.offset(), 24000U);
  sequence.decodeSequence();
  EXPECT_TRUE(sequence.decoded());
  EXPECT_EQ(sequence.sequenceNumber(), 2U);
}

TEST(DifSequence, HeaderTellsTheSystem) {
  const DVDifSequence pal = decodedSequence(makeFrameBytes(DVSystem::pal625_50), 0);
  EXPECT_TRUE(pal.systemOk());
  EXPECT_EQ(pal.timeCode().mType, 1U);
  const DVDifSequence ntsc = decodedSequence(makeFrameBytes(DVSystem::ntsc525_60), 0);
  EXPECT_TRUE(ntsc.systemOk());
  EXPECT_EQ(ntsc.timeCode().mType, 2U);
}

TEST(DifSequence, TheHighestBitAloneTellsTheSystem) {
  const auto typeWith = [](std::uint8_t flags) {
    FrameBytes frame = makeFrameBytes(DVSystem::ntsc525_60);
    frame[3] = flags;
    return decodedSequence(frame, 0).timeCode().mType;
  };
  EXPECT_EQ(typeWith(0x7F), 2U);
  EXPECT_EQ(typeWith(0x80), 1U);
}

TEST(DifSequence, TheSystemIsTakenWhateverTheHeadersSectionType) {
  FrameBytes frame = makeFrameBytes(DVSystem::pal625_50);
  setSectionType(frame, 0, 0, 4);
  const DVDifSequence sequence = decodedSequence(frame, 0);
  EXPECT_TRUE(sequence.systemOk());
  EXPECT_EQ(sequence.timeCode().mType, 1U);
  EXPECT_EQ(sequence.sectionType(), 4);
}

TEST(DifSequence, HeaderIdIsDecoded) {
  FrameBytes frame = makeFrameBytes(DVSystem::ntsc525_60);
  blockAt(frame, 4, 0)[0] = 0x9F;
  blockAt(frame, 4, 0)[1] = 0x4F;
  const DVDifSequence sequence = decodedSequence(frame, 4);
  EXPECT_EQ(sequence.sectionType(), 4);
  EXPECT_EQ(sequence.sequenceNumber(), 4U);
  EXPECT_EQ(sequence.sequenceChannel(), 1U);
}

TEST(DifSequence, BlocksAreAddressedByTheNumberInTheStream) {
  FrameBytes frame = makeFrameBytes(DVSystem::ntsc525_60);
  setSequenceNumber(frame, 1, 4);
  setSubcodePack(frame, 1, 0, {0x13, 0x01, 0, 0, 0});
  setSubcodePack(frame, 4, 0, {0x13, 0x02, 0, 0, 0});
  // The parity is that of the index, 1; the block is in sequence 4.
  blockAt(frame, 4, 3)[8 + 2] = 0x00;
  blockAt(frame, 4, 5)[53 + 2] = 0x07;
  const DVDifSequence sequence = decodedSequence(frame, 1);
  EXPECT_EQ(sequence.offset(), 12000U);
  EXPECT_EQ(sequence.getBlockAt(1).offset(), 48080U);
  EXPECT_EQ(sequence.timeCode().mFrames, 2);
  EXPECT_EQ(sequence.aspectRatio(), 1);
}

TEST(DifSequence, DecodesOnce) {
  FrameBytes frame = frameWithPack(kDate20241231);
  DVDifSequence sequence = decodedSequence(frame, 0);
  sequence.setCaptureDateTime(nullptr);
  sequence.decodeSequence();
  EXPECT_EQ(sequence.captureDateTime(), nullptr);
  EXPECT_TRUE(sequence.decoded());
}

TEST(DifSequence, SameBufferStaysDecoded) {
  const SharedBytes frame = test::makeFrame(DVSystem::ntsc525_60);
  DVDifSequence sequence(frame, 0);
  sequence.decodeSequence();
  sequence.setData(frame);
  EXPECT_TRUE(sequence.decoded());
  EXPECT_EQ(frame.useCount(), 2);
}

TEST(DifSequence, AnotherBufferKeepsTheEarlierDate) {
  DVDifSequence sequence = decodedSequence(frameWithPack(kDate20241231), 0);
  FrameBytes later = frameWithPack({0x62, 0xFF, 0x01, 0x02, 0x03});
  setSubcodePack(later, 0, 1, {0x13, 0x09, 0, 0, 0});
  sequence.setData(SharedBytes::copyOf(later));
  EXPECT_FALSE(sequence.decoded());
  sequence.decodeSequence();
  EXPECT_TRUE(sequence.decoded());
  EXPECT_EQ(sequence.timeCode().mFrames, 9);
  expectDate(sequence.captureDateTime(), 2024, 12, 31);
}

TEST(DifSequence, ReDecodeStartsTheDateAfresh) {
  DVDifSequence sequence = decodedSequence(frameWithPack(kDate20241231), 0);
  sequence.setData(SharedBytes::copyOf(frameWithPack({0x62, 0xFF, 0x01, 0x02, 0x03})));
  sequence.reDecodeSequence();
  expectDate(sequence.captureDateTime(), 2003, 2, 1);
}

TEST(DifSequence, WhatALaterBufferLacksStaysAsItWas) {
  FrameBytes frame = frameWithPack({0x13, 0x24, 0x59, 0x59, 0x23}, DVSystem::pal625_50);
  test::setVideoSourceControlPack(frame, 0, {0x61, 0x3F, 0xC8, 0xCF, 0xFF});
  test::setVideoSourcePack(frame, 0, {0x60, 0xFF, 0xFF, 0xE4, 0xFF});
  DVDifSequence sequence = decodedSequence(frame, 0);
  FrameBytes later = makeFrameBytes(DVSystem::ntsc525_60);
  setSectionType(later, 0, 5, 3);
  sequence.setData(SharedBytes::copyOf(later));
  // Starting afresh is for the date and time only.
  sequence.reDecodeSequence();
  EXPECT_EQ(sequence.timeCode(), timecodeOf(23, 59, 59, 24, 2));
  EXPECT_TRUE(sequence.timecodeOk());
  EXPECT_EQ(sequence.aspectRatio(), 1);
  EXPECT_TRUE(sequence.stillPicture());
  EXPECT_TRUE(sequence.interlaced());
  EXPECT_EQ(sequence.pixelSampling(), 4);
}

TEST(DifSequence, AnotherIndexMovesTheOffsetAndStaysDecoded) {
  DVDifSequence sequence = decodedSequence(makeFrameBytes(DVSystem::ntsc525_60), 0);
  sequence.setSequenceIndex(3);
  EXPECT_EQ(sequence.offset(), 36000U);
  EXPECT_TRUE(sequence.decoded());
  sequence.reDecodeSequence();
  EXPECT_EQ(sequence.sequenceNumber(), 3U);
}

TEST(DifSequence, UndecodedOneHasNoDate) {
  DVDifSequence sequence = decodedSequence(frameWithPack(kDate20241231), 0);
  sequence.setUndecoded();
  EXPECT_FALSE(sequence.decoded());
  EXPECT_EQ(sequence.captureDateTime(), nullptr);
}

TEST(DifSequence, HoldsAHandleOfTheFrameAndLetsItGo) {
  const SharedBytes frame = test::makeFrame(DVSystem::ntsc525_60);
  {
    DVDifSequence sequence(frame, 0);
    sequence.decodeSequence();
    EXPECT_EQ(frame.useCount(), 2);
  }
  EXPECT_EQ(frame.useCount(), 1);
}

TEST(DifSequence, DecodesNothingWithoutABuffer) {
  DVDifSequence sequence = decodedSequence(makeFrameBytes(DVSystem::ntsc525_60), 0);
  sequence.setData(SharedBytes());
  sequence.decodeSequence();
  EXPECT_FALSE(sequence.decoded());
  EXPECT_FALSE(sequence.containsExpectedSections());
}

TEST(DifSequence, ShortBufferIsOutOfRange) {
  FrameBytes frame = makeFrameBytes(DVSystem::ntsc525_60);
  for (const std::size_t size : {0U, 3U, 83U, 170U, 240U, 450U}) {
    frame.resize(120000);
    const SharedBytes buffer = SharedBytes::copyOf(std::span(frame).first(size));
    DVDifSequence sequence(buffer, 0);
    EXPECT_THROW(sequence.decodeSequence(), std::out_of_range) << size;
    EXPECT_FALSE(sequence.decoded()) << size;
  }
  DVDifSequence beyond(SharedBytes::copyOf(frame), 10);
  EXPECT_THROW(beyond.decodeSequence(), std::out_of_range);
}

TEST(DifSequence, SequenceNumberPastTheEndIsOutOfRange) {
  FrameBytes frame = makeFrameBytes(DVSystem::ntsc525_60);
  setSequenceNumber(frame, 0, 10);
  DVDifSequence sequence(SharedBytes::copyOf(frame), 0);
  EXPECT_THROW(sequence.decodeSequence(), std::out_of_range);
  EXPECT_TRUE(sequence.systemOk());
  EXPECT_FALSE(sequence.decoded());
  EXPECT_THROW((void)sequence.containsExpectedSections(), std::out_of_range);
}

TEST(DifSequence, WrongSubcodeIsLoggedAndLeavesItsFields) {
  for (const int block : {1, 2}) {
    FrameBytes frame = makeFrameBytes(DVSystem::ntsc525_60, {.timecode = timecodeOf(1, 2, 3, 4)});
    setSectionType(frame, 0, block, 4);
    test::DVRecordingLog log;
    const DVDifSequence sequence = decodedSequence(frame, 0, &log);
    EXPECT_THAT(log.messages(), ElementsAre(block == 1 ? "Cannot decode subcode for SC0 and SC1 of type 4 and 1"
                                                       : "Cannot decode subcode for SC0 and SC1 of type 1 and 4"));
    EXPECT_EQ(log.lines.front().level, LogLevel::info);
    EXPECT_FALSE(sequence.timecodeOk());
    EXPECT_EQ(timecodeText(sequence.timeCode()), "00:00:00:00");
    EXPECT_EQ(sequence.aspectRatio(), 1);
    EXPECT_TRUE(sequence.decoded());
  }
}

TEST(DifSequence, WrongVauxIsLoggedAndLeavesItsFields) {
  FrameBytes frame = makeFrameBytes(DVSystem::ntsc525_60);
  setSectionType(frame, 0, 5, 3);
  setSectionType(frame, 1, 3, 7);
  test::DVRecordingLog log;
  const DVDifSequence even = decodedSequence(frame, 0, &log);
  EXPECT_THAT(log.messages(), ElementsAre("Cannot decode Vaux Source Control Pack for VA of type 3 at block number 5",
                                          "Cannot decode Vaux Source Pack for VA of type 3 at block number 5"));
  EXPECT_EQ(even.aspectRatio(), 0);
  EXPECT_EQ(even.pixelSampling(), -1);
  log.lines.clear();
  decodedSequence(frame, 1, &log);
  EXPECT_THAT(log.messages(), ElementsAre("Cannot decode Vaux Source Control Pack for VA of type 7 at block number 3",
                                          "Cannot decode Vaux Source Pack for VA of type 7 at block number 3"));
  EXPECT_EQ(log.lines.front().level, LogLevel::info);
}

TEST(DifSequence, SubcodeIsDecodedBeforeVaux) {
  FrameBytes frame = makeFrameBytes(DVSystem::ntsc525_60);
  setSectionType(frame, 0, 1, 4);
  setSectionType(frame, 0, 5, 4);
  test::DVRecordingLog log;
  decodedSequence(frame, 0, &log);
  ASSERT_EQ(log.lines.size(), 3U);
  EXPECT_THAT(log.lines[0].message, testing::HasSubstr("subcode"));
  EXPECT_THAT(log.lines[1].message, testing::HasSubstr("Vaux Source Control Pack"));
  EXPECT_THAT(log.lines[2].message, testing::HasSubstr("Vaux Source Pack"));
}

TEST(DifSequence, WrongVauxLeavesTheSubcodeToBeRead) {
  FrameBytes frame = frameWithPack({0x13, 0x24, 0x59, 0x59, 0x23});
  setSectionType(frame, 0, 5, 3);
  EXPECT_TRUE(decodedSequence(frame, 0).timecodeOk());
}

TEST(DifSequence, AGoodSequenceLogsNothing) {
  test::DVRecordingLog log;
  decodedSequence(makeFrameBytes(DVSystem::pal625_50), 11, &log);
  EXPECT_THAT(log.messages(), IsEmpty());
}

}  // namespace
}  // namespace zq
