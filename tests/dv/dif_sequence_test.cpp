#include "dv/dif_sequence.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

#include "dv/frame_capture_date_time.h"
#include "support/dv_frames.h"
#include "support/dv_recording_log.h"
#include "timecode/timecode_text.h"

namespace zq {
namespace {

using test::blockAt;
using test::FrameBytes;
using test::makeFrameBytes;
using test::setSectionType;
using test::setSequenceNumber;
using test::setSubcodePack;
using test::timecodeOf;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr Pack kDate20241231{0x62, 0xFF, 0x31, 0x12, 0x24};
constexpr Pack kTime133045{0x63, 0xFF, 0x45, 0x30, 0x13};

DVDifSequence decodedSequence(const FrameBytes& frame, std::uint32_t index, Log* log = nullptr) {
  DVDifSequence sequence(SharedBytes::copyOf(frame), index, log);
  sequence.decodeSequence();
  return sequence;
}

/// A frame whose sequence 0 has this pack in its first subcode slot and nothing else.
FrameBytes frameWithPack(const Pack& pack, DVSystem system = DVSystem::ntsc525_60) {
  FrameBytes frame = makeFrameBytes(system);
  setSubcodePack(frame, 0, 0, pack);
  return frame;
}

SMPTETime timecodeOfPack(const Pack& pack) {
  return decodedSequence(frameWithPack(pack), 0).timeCode();
}

std::shared_ptr<DVFrameCaptureDateTime> captureDateTimeOfPack(const Pack& pack) {
  return decodedSequence(frameWithPack(pack), 0).captureDateTime();
}

void expectDate(const std::shared_ptr<DVFrameCaptureDateTime>& value, int year, int month, int day) {
  ASSERT_NE(value, nullptr);
  EXPECT_TRUE(value->isDateSet());
  EXPECT_EQ(value->year(), year);
  EXPECT_EQ(value->monthOfYear(), month);
  EXPECT_EQ(value->dayOfMonth(), day);
}

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

TEST(DifSequence, HeaderIdIsDecoded) {
  FrameBytes frame = makeFrameBytes(DVSystem::ntsc525_60);
  blockAt(frame, 4, 0)[0] = 0x9F;
  blockAt(frame, 4, 0)[1] = 0x4F;
  const DVDifSequence sequence = decodedSequence(frame, 4);
  EXPECT_EQ(sequence.sectionType(), 4);
  EXPECT_EQ(sequence.sequenceNumber(), 4U);
  EXPECT_EQ(sequence.sequenceChannel(), 1U);
}

TEST(DifSequence, TimecodePackIsBcd) {
  EXPECT_EQ(timecodeOfPack({0x13, 0x24, 0x59, 0x59, 0x23}), timecodeOf(23, 59, 59, 24, 2));
}

TEST(DifSequence, TimecodeFlagsAreMaskedOff) {
  EXPECT_EQ(timecodeOfPack({0x13, 0x64, 0x59, 0x59, 0x23}), timecodeOf(23, 59, 59, 24, 2));
  EXPECT_EQ(timecodeOfPack({0x13, 0xD7, 0x82, 0x80, 0xC0}), timecodeOf(0, 0, 2, 17, 2));
}

TEST(DifSequence, DropFrameBitHasNoSayInTheType) {
  const FrameBytes pal = frameWithPack({0x13, 0x64, 0x59, 0x59, 0x23}, DVSystem::pal625_50);
  EXPECT_EQ(decodedSequence(pal, 0).timeCode().mType, 1U);
}

TEST(DifSequence, LastTimecodePackWins) {
  FrameBytes frame = makeFrameBytes(DVSystem::ntsc525_60);
  setSubcodePack(frame, 0, 0, {0x13, 0x01, 0, 0, 0});
  setSubcodePack(frame, 0, 3, {0x13, 0x02, 0, 0, 0});
  EXPECT_EQ(decodedSequence(frame, 0).timeCode().mFrames, 2);
  setSubcodePack(frame, 0, 6, {0x13, 0x03, 0, 0, 0});
  EXPECT_EQ(decodedSequence(frame, 0).timeCode().mFrames, 3);
  setSubcodePack(frame, 0, 11, {0x13, 0x04, 0, 0, 0});
  EXPECT_EQ(decodedSequence(frame, 0).timeCode().mFrames, 4);
}

TEST(DifSequence, EverySubcodeSlotIsRead) {
  for (int slot = 0; slot < kSubcodeSlotsPerSequence; ++slot) {
    FrameBytes frame = makeFrameBytes(DVSystem::ntsc525_60);
    setSubcodePack(frame, 0, slot, {0x13, 0x07, 0, 0, 0});
    EXPECT_TRUE(decodedSequence(frame, 0).timecodeOk()) << slot;
  }
}

TEST(DifSequence, RecordingDatePack) {
  expectDate(captureDateTimeOfPack(kDate20241231), 2024, 12, 31);
}

TEST(DifSequence, UnusedBitsOfTheDateAreMaskedOff) {
  expectDate(captureDateTimeOfPack({0x62, 0xFF, 0xC8, 0xE7, 0x24}), 2024, 7, 8);
}

TEST(DifSequence, TwoDigitYearsBelow25AreOfThisCentury) {
  const auto yearOf = [](std::uint8_t bcdYear) {
    return captureDateTimeOfPack({0x62, 0xFF, 0x01, 0x01, bcdYear})->year();
  };
  EXPECT_EQ(yearOf(0x00), 2000);
  EXPECT_EQ(yearOf(0x24), 2024);
  EXPECT_EQ(yearOf(0x25), 1925);
  EXPECT_EQ(yearOf(0x99), 1999);
}

TEST(DifSequence, NoDateIsTooOddToPass) {
  expectDate(captureDateTimeOfPack({0x62, 0xFF, 0x39, 0x00, 0x04}), 2004, 0, 39);
  // A camcorder whose clock was never set.
  expectDate(captureDateTimeOfPack({0x62, 0xFF, 0xFF, 0xFF, 0xFF}), 2065, 25, 45);
}

TEST(DifSequence, RecordingTimePack) {
  const auto value = captureDateTimeOfPack(kTime133045);
  ASSERT_NE(value, nullptr);
  EXPECT_TRUE(value->isTimeSet());
  EXPECT_FALSE(value->isDateSet());
  EXPECT_EQ(value->hourOfDay(), 13);
  EXPECT_EQ(value->minuteOfHour(), 30);
  EXPECT_EQ(value->secondOfMinute(), 45);
}

TEST(DifSequence, FirstDateAndFirstTimeWin) {
  FrameBytes frame = makeFrameBytes(DVSystem::ntsc525_60);
  setSubcodePack(frame, 0, 0, kDate20241231);
  setSubcodePack(frame, 0, 1, {0x62, 0xFF, 0x01, 0x02, 0x03});
  setSubcodePack(frame, 0, 5, kTime133045);
  setSubcodePack(frame, 0, 7, {0x63, 0xFF, 0x01, 0x02, 0x03});
  const DVDifSequence sequence = decodedSequence(frame, 0);
  expectDate(sequence.captureDateTime(), 2024, 12, 31);
  EXPECT_EQ(sequence.captureDateTime()->secondOfMinute(), 45);
}

TEST(DifSequence, TimeMayComeBeforeTheDate) {
  FrameBytes frame = makeFrameBytes(DVSystem::ntsc525_60);
  setSubcodePack(frame, 0, 2, kTime133045);
  setSubcodePack(frame, 0, 9, kDate20241231);
  const DateValue date = decodedSequence(frame, 0).date();
  ASSERT_NE(date, nullptr);
  EXPECT_EQ(date->isoString(), "2024-12-31T13:30:45");
}

TEST(DifSequence, MissingHalfIsAddedToTheValueItHas) {
  FrameBytes frame = frameWithPack(kDate20241231);
  setSubcodePack(frame, 0, 1, kTime133045);
  for (const bool hasDate : {true, false}) {
    const auto held = hasDate ? DVFrameCaptureDateTime::dateWithYearMonthDay(2003, 2, 1)
                              : DVFrameCaptureDateTime::timeWithHoursMinutesSeconds(4, 5, 6);
    DVDifSequence sequence(SharedBytes::copyOf(frame), 0);
    sequence.setCaptureDateTime(held);
    sequence.decodeSequence();
    EXPECT_EQ(sequence.captureDateTime(), held);
    ASSERT_NE(sequence.date(), nullptr);
    EXPECT_EQ(sequence.date()->isoString(), hasDate ? "2003-02-01T13:30:45" : "2024-12-31T04:05:06");
  }
}

TEST(DifSequence, ZoneOfTheDateAndFramesOfTheTimeAreNotRead) {
  FrameBytes frame = frameWithPack({0x62, 0x15, 0x31, 0x12, 0x24});
  setSubcodePack(frame, 0, 1, {0x63, 0x24, 0x45, 0x30, 0x13});
  const DateValue date = decodedSequence(frame, 0).date();
  ASSERT_NE(date, nullptr);
  EXPECT_EQ(date->isoString(), "2024-12-31T13:30:45");
}

TEST(DifSequence, DateAloneIsNoDate) {
  EXPECT_EQ(decodedSequence(frameWithPack(kDate20241231), 0).date(), nullptr);
  EXPECT_EQ(decodedSequence(frameWithPack(kTime133045), 0).date(), nullptr);
}

TEST(DifSequence, OtherPacksAreIgnored) {
  const DVDifSequence sequence = decodedSequence(frameWithPack({0x14, 0x24, 0x59, 0x59, 0x23}), 0);
  EXPECT_FALSE(sequence.timecodeOk());
  EXPECT_EQ(sequence.captureDateTime(), nullptr);
}

TEST(DifSequence, DisplayBitsTellTheAspectRatio) {
  FrameBytes frame = makeFrameBytes(DVSystem::ntsc525_60);
  const auto aspectOf = [&frame](std::uint8_t display) {
    test::setVideoSourceControlPack(frame, 0, {0x61, 0x3F, display, 0xFC, 0xFF});
    return decodedSequence(frame, 0).aspectRatio();
  };
  EXPECT_EQ(aspectOf(0x02), 0);
  EXPECT_EQ(aspectOf(0x07), 0);
  EXPECT_EQ(aspectOf(0xF8), 1);
  EXPECT_EQ(aspectOf(0x00), 1);
}

TEST(DifSequence, ClearBitMeansStillPicture) {
  FrameBytes frame = makeFrameBytes(DVSystem::ntsc525_60);
  test::setVideoSourceControlPack(frame, 0, {0x61, 0x3F, 0xC8, 0xDF, 0xFF});
  EXPECT_TRUE(decodedSequence(frame, 0).stillPicture());
  test::setVideoSourceControlPack(frame, 0, {0x61, 0x3F, 0xC8, 0x20, 0xFF});
  EXPECT_FALSE(decodedSequence(frame, 0).stillPicture());
}

TEST(DifSequence, ClearBitMeansInterlaced) {
  FrameBytes frame = makeFrameBytes(DVSystem::ntsc525_60);
  test::setVideoSourceControlPack(frame, 0, {0x61, 0x3F, 0xC8, 0xEF, 0xFF});
  EXPECT_TRUE(decodedSequence(frame, 0).interlaced());
  test::setVideoSourceControlPack(frame, 0, {0x61, 0x3F, 0xC8, 0x10, 0xFF});
  EXPECT_FALSE(decodedSequence(frame, 0).interlaced());
}

TEST(DifSequence, SourcePackTellsTheSampling) {
  FrameBytes frame = makeFrameBytes(DVSystem::ntsc525_60);
  const auto samplingOf = [&frame](std::uint8_t type) {
    test::setVideoSourcePack(frame, 0, {0x60, 0xFF, 0xFF, type, 0xFF});
    return decodedSequence(frame, 0).pixelSampling();
  };
  EXPECT_EQ(samplingOf(0xE0), 0);
  EXPECT_EQ(samplingOf(0xE4), 4);
  EXPECT_EQ(samplingOf(0xE1), -1);
  EXPECT_EQ(samplingOf(0xF0), -1);
  EXPECT_EQ(samplingOf(0xF4), -1);
  EXPECT_EQ(samplingOf(0xFF), -1);
}

TEST(DifSequence, VauxPlacesAreTrustedWhateverThePackHeader) {
  FrameBytes frame = makeFrameBytes(DVSystem::ntsc525_60);
  test::setVideoSourceControlPack(frame, 0, {0x00, 0x3F, 0x00, 0xFC, 0xFF});
  test::setVideoSourcePack(frame, 0, {0x00, 0xFF, 0xFF, 0x04, 0xFF});
  EXPECT_EQ(decodedSequence(frame, 0).aspectRatio(), 1);
  EXPECT_EQ(decodedSequence(frame, 0).pixelSampling(), 4);
}

TEST(DifSequence, EvenIndexReadsVauxFromBlockFive) {
  FrameBytes frame = makeFrameBytes(DVSystem::ntsc525_60);
  blockAt(frame, 4, 5)[53 + 2] = 0x00;
  blockAt(frame, 4, 5)[48 + 3] = 0x04;
  blockAt(frame, 4, 3)[8 + 2] = 0x07;
  blockAt(frame, 4, 3)[3 + 3] = 0x00;
  EXPECT_EQ(decodedSequence(frame, 4).aspectRatio(), 1);
  EXPECT_EQ(decodedSequence(frame, 4).pixelSampling(), 4);
}

TEST(DifSequence, OddIndexReadsVauxFromBlockThree) {
  FrameBytes frame = makeFrameBytes(DVSystem::ntsc525_60);
  blockAt(frame, 5, 3)[8 + 2] = 0x00;
  blockAt(frame, 5, 3)[3 + 3] = 0x04;
  blockAt(frame, 5, 5)[53 + 2] = 0x07;
  blockAt(frame, 5, 5)[48 + 3] = 0x00;
  EXPECT_EQ(decodedSequence(frame, 5).aspectRatio(), 1);
  EXPECT_EQ(decodedSequence(frame, 5).pixelSampling(), 4);
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
    EXPECT_EQ(log.lines.front().level, LogLevel::warning);
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
  EXPECT_EQ(log.lines.front().level, LogLevel::warning);
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

TEST(DifSequence, WholeSequencesContainTheExpectedSections) {
  const FrameBytes frame = makeFrameBytes(DVSystem::pal625_50);
  for (std::uint32_t index = 0; index < 12; ++index) {
    EXPECT_TRUE(decodedSequence(frame, index).containsExpectedSections()) << index;
  }
}

TEST(DifSequence, EveryWrongSectionIsFound) {
  for (int block = 0; block < BLOCKS_PER_SEQUENCE; ++block) {
    FrameBytes frame = makeFrameBytes(DVSystem::ntsc525_60);
    DVDifSequence sequence(SharedBytes(), 0);
    setSectionType(frame, 0, block, 5);
    sequence.setData(SharedBytes::copyOf(frame));
    EXPECT_FALSE(sequence.containsExpectedSections()) << block;
  }
}

TEST(DifSequence, EachBlockHasItsOwnSectionTypes) {
  const auto isExpected = [](int block, int type) {
    if (block == 0) return type == 0;
    if (block <= 2) return type == 1;
    return block <= 5 ? type == 2 : type == 3 || type == 4;
  };
  const FrameBytes whole = makeFrameBytes(DVSystem::ntsc525_60);
  for (const int block : {0, 1, 2, 3, 4, 5, 6, 7, 149}) {
    for (int type = 0; type < 8; ++type) {
      FrameBytes frame = whole;
      setSectionType(frame, 0, block, type);
      EXPECT_EQ(DVDifSequence(SharedBytes::copyOf(frame), 0).containsExpectedSections(), isExpected(block, type))
          << block << " of type " << type;
    }
  }
}

TEST(DifSequence, UndecodedOneChecksTheBlocksOfSequenceZero) {
  FrameBytes frame = makeFrameBytes(DVSystem::ntsc525_60);
  setSectionType(frame, 0, 1, 4);
  DVDifSequence sequence(SharedBytes::copyOf(frame), 3);
  EXPECT_FALSE(sequence.containsExpectedSections());
  sequence.decodeSequenceBasics();
  EXPECT_TRUE(sequence.containsExpectedSections());
}

TEST(DifSequence, SoundAndPictureBlocksMayChangePlaces) {
  FrameBytes frame = makeFrameBytes(DVSystem::ntsc525_60);
  setSectionType(frame, 0, 6, 4);
  setSectionType(frame, 0, 7, 3);
  EXPECT_TRUE(decodedSequence(frame, 0).containsExpectedSections());
}

TEST(DifSequence, ShortBufferIsCheckedAsFarAsItGoes) {
  const FrameBytes frame = makeFrameBytes(DVSystem::ntsc525_60);
  const auto isExpected = [&frame](std::size_t size) {
    return DVDifSequence(SharedBytes::copyOf(std::span(frame).first(size)), 0).containsExpectedSections();
  };
  EXPECT_FALSE(isExpected(79));
  EXPECT_TRUE(isExpected(80));
  EXPECT_TRUE(isExpected(500));
}

TEST(DifSequence, BlockThatTheBufferCutsOffIsNotChecked) {
  FrameBytes frame = makeFrameBytes(DVSystem::ntsc525_60);
  setSectionType(frame, 0, 1, 4);
  const auto isExpected = [&frame](std::size_t size) {
    return DVDifSequence(SharedBytes::copyOf(std::span(frame).first(size)), 0).containsExpectedSections();
  };
  EXPECT_TRUE(isExpected(159));
  EXPECT_FALSE(isExpected(160));
}

TEST(DifSequence, BlocksCountedFromTheWholeBufferMayLieOutsideIt) {
  // The buffer has 150 blocks, but those of sequence 1 are behind its end.
  FrameBytes frame = makeFrameBytes(DVSystem::ntsc525_60);
  frame.resize(SEQUENCE_SIZE);
  setSequenceNumber(frame, 0, 1);
  DVDifSequence sequence(SharedBytes::copyOf(frame), 0);
  sequence.decodeSequenceBasics();
  EXPECT_THROW((void)sequence.containsExpectedSections(), std::out_of_range);
}

}  // namespace
}  // namespace zq
