#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

#include "dv/dif_sequence.h"
#include "dv/frame_capture_date_time.h"
#include "support/dv_frames.h"
#include "support/dv_recording_log.h"
#include "support/dv_sequences.h"
#include "timecode/timecode_text.h"

namespace zq {
namespace {

using test::blockAt;
using test::captureDateTimeOfPack;
using test::decodedSequence;
using test::expectDate;
using test::FrameBytes;
using test::frameWithPack;
using test::kDate20241231;
using test::kTime133045;
using test::makeFrameBytes;
using test::setSubcodePack;
using test::timecodeOf;
using test::timecodeOfPack;

TEST(DifSequencePacks, TimecodePackIsBcd) {
  EXPECT_EQ(timecodeOfPack({0x13, 0x24, 0x59, 0x59, 0x23}), timecodeOf(23, 59, 59, 24, 2));
}

TEST(DifSequencePacks, TimecodeFlagsAreMaskedOff) {
  EXPECT_EQ(timecodeOfPack({0x13, 0x64, 0x59, 0x59, 0x23}), timecodeOf(23, 59, 59, 24, 2));
  EXPECT_EQ(timecodeOfPack({0x13, 0xD7, 0x82, 0x80, 0xC0}), timecodeOf(0, 0, 2, 17, 2));
}

TEST(DifSequencePacks, DropFrameBitHasNoSayInTheType) {
  const FrameBytes pal = frameWithPack({0x13, 0x64, 0x59, 0x59, 0x23}, DVSystem::pal625_50);
  EXPECT_EQ(decodedSequence(pal, 0).timeCode().mType, 1U);
}

TEST(DifSequencePacks, LastTimecodePackWins) {
  FrameBytes frame = makeFrameBytes(DVSystem::ntsc525_60);
  setSubcodePack(frame, 0, 0, {0x13, 0x01, 0, 0, 0});
  setSubcodePack(frame, 0, 3, {0x13, 0x02, 0, 0, 0});
  EXPECT_EQ(decodedSequence(frame, 0).timeCode().mFrames, 2);
  setSubcodePack(frame, 0, 6, {0x13, 0x03, 0, 0, 0});
  EXPECT_EQ(decodedSequence(frame, 0).timeCode().mFrames, 3);
  setSubcodePack(frame, 0, 11, {0x13, 0x04, 0, 0, 0});
  EXPECT_EQ(decodedSequence(frame, 0).timeCode().mFrames, 4);
}

TEST(DifSequencePacks, EverySubcodeSlotIsRead) {
  for (int slot = 0; slot < kSubcodeSlotsPerSequence; ++slot) {
    FrameBytes frame = makeFrameBytes(DVSystem::ntsc525_60);
    setSubcodePack(frame, 0, slot, {0x13, 0x07, 0, 0, 0});
    EXPECT_TRUE(decodedSequence(frame, 0).timecodeOk()) << slot;
  }
}

TEST(DifSequencePacks, RecordingDatePack) {
  expectDate(captureDateTimeOfPack(kDate20241231), 2024, 12, 31);
}

TEST(DifSequencePacks, UnusedBitsOfTheDateAreMaskedOff) {
  expectDate(captureDateTimeOfPack({0x62, 0xFF, 0xC8, 0xE7, 0x24}), 2024, 7, 8);
}

TEST(DifSequencePacks, TwoDigitYearsBelow25AreOfThisCentury) {
  const auto yearOf = [](std::uint8_t bcdYear) {
    return captureDateTimeOfPack({0x62, 0xFF, 0x01, 0x01, bcdYear})->year();
  };
  EXPECT_EQ(yearOf(0x00), 2000);
  EXPECT_EQ(yearOf(0x24), 2024);
  EXPECT_EQ(yearOf(0x25), 1925);
  EXPECT_EQ(yearOf(0x99), 1999);
}

TEST(DifSequencePacks, NoDateIsTooOddToPass) {
  expectDate(captureDateTimeOfPack({0x62, 0xFF, 0x39, 0x00, 0x04}), 2004, 0, 39);
  // A camcorder whose clock was never set.
  expectDate(captureDateTimeOfPack({0x62, 0xFF, 0xFF, 0xFF, 0xFF}), 2065, 25, 45);
}

TEST(DifSequencePacks, RecordingTimePack) {
  const auto value = captureDateTimeOfPack(kTime133045);
  ASSERT_NE(value, nullptr);
  EXPECT_TRUE(value->isTimeSet());
  EXPECT_FALSE(value->isDateSet());
  EXPECT_EQ(value->hourOfDay(), 13);
  EXPECT_EQ(value->minuteOfHour(), 30);
  EXPECT_EQ(value->secondOfMinute(), 45);
}

TEST(DifSequencePacks, RecordingTimePackHasAllItsDigits) {
  for (const int tens : {2, 3, 5}) {
    const auto seconds = static_cast<std::uint8_t>(tens << 4 | 0x9);
    const auto time = captureDateTimeOfPack({0x63, 0xFF, seconds, seconds, 0x23});
    ASSERT_NE(time, nullptr);
    EXPECT_EQ(time->hourOfDay(), 23);
    EXPECT_EQ(time->minuteOfHour(), tens * 10 + 9);
    EXPECT_EQ(time->secondOfMinute(), tens * 10 + 9);
  }
}

TEST(DifSequencePacks, FirstTimeWinsWhereThereIsNoDateYet) {
  FrameBytes frame = frameWithPack(kTime133045);
  setSubcodePack(frame, 0, 1, {0x63, 0xFF, 0x01, 0x02, 0x03});
  setSubcodePack(frame, 0, 2, kDate20241231);
  const DVDifSequence sequence = decodedSequence(frame, 0);
  ASSERT_NE(sequence.date(), nullptr);
  EXPECT_EQ(sequence.date()->isoString(), "2024-12-31T13:30:45");
}

TEST(DifSequencePacks, FirstDateAndFirstTimeWin) {
  FrameBytes frame = makeFrameBytes(DVSystem::ntsc525_60);
  setSubcodePack(frame, 0, 0, kDate20241231);
  setSubcodePack(frame, 0, 1, {0x62, 0xFF, 0x01, 0x02, 0x03});
  setSubcodePack(frame, 0, 5, kTime133045);
  setSubcodePack(frame, 0, 7, {0x63, 0xFF, 0x01, 0x02, 0x03});
  const DVDifSequence sequence = decodedSequence(frame, 0);
  expectDate(sequence.captureDateTime(), 2024, 12, 31);
  EXPECT_EQ(sequence.captureDateTime()->secondOfMinute(), 45);
}

TEST(DifSequencePacks, TimeMayComeBeforeTheDate) {
  FrameBytes frame = makeFrameBytes(DVSystem::ntsc525_60);
  setSubcodePack(frame, 0, 2, kTime133045);
  setSubcodePack(frame, 0, 9, kDate20241231);
  const DateValue date = decodedSequence(frame, 0).date();
  ASSERT_NE(date, nullptr);
  EXPECT_EQ(date->isoString(), "2024-12-31T13:30:45");
}

TEST(DifSequencePacks, MissingHalfIsAddedToTheValueItHas) {
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

TEST(DifSequencePacks, ZoneOfTheDateAndFramesOfTheTimeAreNotRead) {
  FrameBytes frame = frameWithPack({0x62, 0x15, 0x31, 0x12, 0x24});
  setSubcodePack(frame, 0, 1, {0x63, 0x24, 0x45, 0x30, 0x13});
  const DateValue date = decodedSequence(frame, 0).date();
  ASSERT_NE(date, nullptr);
  EXPECT_EQ(date->isoString(), "2024-12-31T13:30:45");
}

TEST(DifSequencePacks, DateAloneIsNoDate) {
  EXPECT_EQ(decodedSequence(frameWithPack(kDate20241231), 0).date(), nullptr);
  EXPECT_EQ(decodedSequence(frameWithPack(kTime133045), 0).date(), nullptr);
}

TEST(DifSequencePacks, OtherPacksAreIgnored) {
  const DVDifSequence sequence = decodedSequence(frameWithPack({0x14, 0x24, 0x59, 0x59, 0x23}), 0);
  EXPECT_FALSE(sequence.timecodeOk());
  EXPECT_EQ(sequence.captureDateTime(), nullptr);
}

TEST(DifSequencePacks, DisplayBitsTellTheAspectRatio) {
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

TEST(DifSequencePacks, ClearBitMeansStillPicture) {
  FrameBytes frame = makeFrameBytes(DVSystem::ntsc525_60);
  test::setVideoSourceControlPack(frame, 0, {0x61, 0x3F, 0xC8, 0xDF, 0xFF});
  EXPECT_TRUE(decodedSequence(frame, 0).stillPicture());
  test::setVideoSourceControlPack(frame, 0, {0x61, 0x3F, 0xC8, 0x20, 0xFF});
  EXPECT_FALSE(decodedSequence(frame, 0).stillPicture());
}

TEST(DifSequencePacks, ClearBitMeansInterlaced) {
  FrameBytes frame = makeFrameBytes(DVSystem::ntsc525_60);
  test::setVideoSourceControlPack(frame, 0, {0x61, 0x3F, 0xC8, 0xEF, 0xFF});
  EXPECT_TRUE(decodedSequence(frame, 0).interlaced());
  test::setVideoSourceControlPack(frame, 0, {0x61, 0x3F, 0xC8, 0x10, 0xFF});
  EXPECT_FALSE(decodedSequence(frame, 0).interlaced());
}

TEST(DifSequencePacks, SourcePackTellsTheSampling) {
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

TEST(DifSequencePacks, VauxPlacesAreTrustedWhateverThePackHeader) {
  FrameBytes frame = makeFrameBytes(DVSystem::ntsc525_60);
  test::setVideoSourceControlPack(frame, 0, {0x00, 0x3F, 0x00, 0xFC, 0xFF});
  test::setVideoSourcePack(frame, 0, {0x00, 0xFF, 0xFF, 0x04, 0xFF});
  EXPECT_EQ(decodedSequence(frame, 0).aspectRatio(), 1);
  EXPECT_EQ(decodedSequence(frame, 0).pixelSampling(), 4);
}

TEST(DifSequencePacks, EvenIndexReadsVauxFromBlockFive) {
  FrameBytes frame = makeFrameBytes(DVSystem::ntsc525_60);
  blockAt(frame, 4, 5)[53 + 2] = 0x00;
  blockAt(frame, 4, 5)[48 + 3] = 0x04;
  blockAt(frame, 4, 3)[8 + 2] = 0x07;
  blockAt(frame, 4, 3)[3 + 3] = 0x00;
  EXPECT_EQ(decodedSequence(frame, 4).aspectRatio(), 1);
  EXPECT_EQ(decodedSequence(frame, 4).pixelSampling(), 4);
}

TEST(DifSequencePacks, OddIndexReadsVauxFromBlockThree) {
  FrameBytes frame = makeFrameBytes(DVSystem::ntsc525_60);
  blockAt(frame, 5, 3)[8 + 2] = 0x00;
  blockAt(frame, 5, 3)[3 + 3] = 0x04;
  blockAt(frame, 5, 5)[53 + 2] = 0x07;
  blockAt(frame, 5, 5)[48 + 3] = 0x00;
  EXPECT_EQ(decodedSequence(frame, 5).aspectRatio(), 1);
  EXPECT_EQ(decodedSequence(frame, 5).pixelSampling(), 4);
}

}  // namespace
}  // namespace zq
