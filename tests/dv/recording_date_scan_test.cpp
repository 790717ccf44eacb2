#include "dv/recording_date_scan.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <random>

#include "dv/frame_capture_date_time.h"
#include "dv/pack.h"
#include "support/dv_frames.h"
#include "support/dv_recording_log.h"

namespace zq {
namespace {

using test::FrameBytes;
using test::makeFrameBytes;

constexpr StampDateTime kStamped{2004, 7, 15, 13, 30, 45};

RecordingDateScan scan(const FrameBytes& frame, Log* log = nullptr) {
  return scanRecordingDate(SharedBytes::copyOf(frame), log);
}

void expectUndated(const RecordingDateScan& result, std::int32_t aspectRatio, bool outOfRange) {
  EXPECT_EQ(result.date, nullptr);
  EXPECT_EQ(result.captureDateTime, nullptr);
  EXPECT_EQ(result.aspectRatio, aspectRatio);
  EXPECT_EQ(result.outOfRange, outOfRange);
}

TEST(RecordingDateScan, FindsTheDateInTheSecondHalf) {
  for (const DVSystem system : {DVSystem::ntsc525_60, DVSystem::pal625_50}) {
    const RecordingDateScan result = scan(makeFrameBytes(system, {.dateTime = kStamped, .aspect = 0}));
    ASSERT_NE(result.date, nullptr);
    EXPECT_EQ(result.date->isoString(), "2004-07-15T13:30:45");
    ASSERT_NE(result.captureDateTime, nullptr);
    EXPECT_EQ(result.captureDateTime->year(), 2004);
    EXPECT_EQ(result.aspectRatio, 0);
    EXPECT_FALSE(result.outOfRange);
  }
}

TEST(RecordingDateScan, UndatedFrameHasItsAspectRatio) {
  expectUndated(scan(makeFrameBytes(DVSystem::ntsc525_60, {.aspect = 1})), 1, false);
  expectUndated(scan(makeFrameBytes(DVSystem::ntsc525_60, {.aspect = 0})), 0, false);
}

TEST(RecordingDateScan, HalvesOfTwoSequencesMakeNoDate) {
  FrameBytes frame = makeFrameBytes(DVSystem::ntsc525_60);
  test::setSubcodePack(frame, 2, 0, {0x62, 0xFF, 0x15, 0x07, 0x04});
  test::setSubcodePack(frame, 3, 0, {0x63, 0xFF, 0x45, 0x30, 0x13});
  expectUndated(scan(frame), 1, false);
}

TEST(RecordingDateScan, StopsAtTheFirstDatedSequence) {
  FrameBytes frame = makeFrameBytes(DVSystem::ntsc525_60, {.dateTime = kStamped});
  test::setSubcodePack(frame, 2, 0, {0x62, 0xFF, 0x01, 0x02, 0x03});
  test::setSubcodePack(frame, 2, 1, {0x63, 0xFF, 0x06, 0x05, 0x04});
  // What comes after is not looked at: neither this aspect ratio nor a number past the end.
  test::setVideoSourceControlPack(frame, 3, {0x61, 0x3F, 0xCA, 0xFC, 0xFF});
  test::setSequenceNumber(frame, 4, 15);
  const RecordingDateScan result = scan(frame);
  ASSERT_NE(result.date, nullptr);
  EXPECT_EQ(result.date->isoString(), "2003-02-01T04:05:06");
  EXPECT_EQ(result.aspectRatio, 1);
  EXPECT_FALSE(result.outOfRange);
}

TEST(RecordingDateScan, AspectRatioIsThatOfTheLastSequenceDecoded) {
  FrameBytes frame = makeFrameBytes(DVSystem::ntsc525_60, {.aspect = 1});
  test::setVideoSourceControlPack(frame, 9, {0x61, 0x3F, 0xCA, 0xFC, 0xFF});
  expectUndated(scan(frame), 0, false);
}

TEST(RecordingDateScan, LooksAtTenSequencesOfAnyFrame) {
  FrameBytes frame = makeFrameBytes(DVSystem::pal625_50);
  test::setSubcodePack(frame, 10, 0, {0x62, 0xFF, 0x15, 0x07, 0x04});
  test::setSubcodePack(frame, 10, 1, {0x63, 0xFF, 0x45, 0x30, 0x13});
  expectUndated(scan(frame), 1, false);
}

TEST(RecordingDateScan, NumberPastTheEndEndsTheScan) {
  FrameBytes frame = makeFrameBytes(DVSystem::ntsc525_60, {.dateTime = kStamped, .aspect = 1});
  test::setSequenceNumber(frame, 3, 12);
  expectUndated(scan(frame), 1, true);
  test::setSequenceNumber(frame, 0, 12);
  expectUndated(scan(frame), 0, true);
}

TEST(RecordingDateScan, ShortBufferEndsTheScan) {
  FrameBytes frame = makeFrameBytes(DVSystem::ntsc525_60, {.dateTime = kStamped});
  frame.resize(48000);
  expectUndated(scan(frame), 1, true);
  frame.resize(50);
  expectUndated(scan(frame), 0, true);
  frame.clear();
  expectUndated(scan(frame), 0, true);
}

TEST(RecordingDateScan, NoBufferIsAnUndatedFrame) {
  expectUndated(scanRecordingDate(SharedBytes()), 0, false);
}

TEST(RecordingDateScan, UnsetClockIsADateButNotAPossibleOne) {
  FrameBytes frame = makeFrameBytes(DVSystem::ntsc525_60);
  test::setSubcodePack(frame, 5, 1, {0x62, 0xFF, 0xFF, 0xFF, 0xFF});
  test::setSubcodePack(frame, 5, 2, {0x63, 0xFF, 0xFF, 0xFF, 0xFF});
  const RecordingDateScan result = scan(frame);
  EXPECT_NE(result.date, nullptr);
  ASSERT_NE(result.captureDateTime, nullptr);
  EXPECT_FALSE(isPossibleDate(*result.captureDateTime));
}

TEST(RecordingDateScan, TellsOfEachSequenceBeforeItIsDecoded) {
  std::vector<std::uint32_t> told;
  const SharedBytes frame = test::makeFrame(DVSystem::ntsc525_60, {.dateTime = kStamped});
  scanRecordingDate(frame, nullptr, [&told](std::uint32_t index) { told.push_back(index); });
  EXPECT_THAT(told, testing::ElementsAre(0, 1, 2, 3, 4, 5));
}

/// A frame in which any sequence may have dates, times, other packs, blocks of another section and another's number.
FrameBytes jumbledFrame(std::mt19937& random) {
  const auto number = [&](std::uint32_t below) { return static_cast<int>(random() % below); };
  const DVSystem system = number(2) == 0 ? DVSystem::ntsc525_60 : DVSystem::pal625_50;
  FrameBytes frame = makeFrameBytes(system);
  const auto sequences = static_cast<std::uint32_t>(sequenceCountOf(system));
  constexpr std::array<std::uint8_t, 4> kKinds{kRecordingDatePack, kRecordingTimePack, kTimecodePack, 0xFF};
  for (int packs = number(20); packs > 0; --packs) {
    const std::uint8_t kind = kKinds[static_cast<std::size_t>(number(kKinds.size()))];
    test::setSubcodePack(frame, number(sequences), number(12), {kind, 0xFF, 0x15, 0x07, 0x04});
  }
  for (int changes = number(8); changes > 0; --changes) {
    const auto display = static_cast<std::uint8_t>(0xC8 | number(8));
    test::setVideoSourceControlPack(frame, number(sequences), {0x61, 0x3F, display, 0xFC, 0xFF});
  }
  for (int damages = number(3); damages > 0; --damages) {
    test::setSectionType(frame, number(sequences), 1 + number(5), number(8));
    test::setSequenceNumber(frame, number(sequences), number(16));
  }
  if (number(8) == 0) frame.resize(static_cast<std::size_t>(number(static_cast<std::uint32_t>(frame.size()))));
  return frame;
}

// With a log every sequence is decoded; without one, those that are undated at a glance are not.
TEST(RecordingDateScan, FindsTheSameWithoutALogAsWithOne) {
  std::mt19937 random(5);  // NOLINT: the same frames each time
  int dated = 0;
  int outOfRange = 0;
  for (int i = 0; i < 3000; ++i) {
    SCOPED_TRACE(i);
    const FrameBytes frame = jumbledFrame(random);
    test::DVRecordingLog log;
    const RecordingDateScan decoded = scan(frame, &log);
    const RecordingDateScan glanced = scan(frame);
    ASSERT_EQ(glanced.date == nullptr, decoded.date == nullptr);
    if (decoded.date) {
      ASSERT_EQ(glanced.date->isoString(), decoded.date->isoString());
      ASSERT_NE(glanced.captureDateTime, nullptr);
    }
    ASSERT_EQ(glanced.aspectRatio, decoded.aspectRatio);
    ASSERT_EQ(glanced.outOfRange, decoded.outOfRange);
    dated += decoded.date ? 1 : 0;
    outOfRange += decoded.outOfRange ? 1 : 0;
  }
  EXPECT_GT(dated, 300);
  EXPECT_GT(outOfRange, 300);
}

TEST(RecordingDateScan, WarningsReachTheLog) {
  FrameBytes frame = makeFrameBytes(DVSystem::ntsc525_60);
  test::setSectionType(frame, 7, 2, 0);
  test::DVRecordingLog log;
  scan(frame, &log);
  EXPECT_THAT(log.messages(), testing::ElementsAre("Cannot decode subcode for SC0 and SC1 of type 1 and 0"));
}

TEST(PossibleDate, KeepsToTheCalendarAndTheClock) {
  const auto isPossible = [](int year, int month, int day, int hours = 0, int minutes = 0, int seconds = 0) {
    return isPossibleDate(
        *DVFrameCaptureDateTime::dateWithYearMonthDayHoursMinutesSeconds(year, month, day, hours, minutes, seconds));
  };
  EXPECT_TRUE(isPossible(2004, 7, 15, 13, 30, 45));
  EXPECT_TRUE(isPossible(2004, 2, 29));
  EXPECT_TRUE(isPossible(2000, 2, 29));
  EXPECT_TRUE(isPossible(2004, 12, 31, 23, 59, 59));
  EXPECT_FALSE(isPossible(2003, 2, 29));
  EXPECT_FALSE(isPossible(1900, 2, 29));
  EXPECT_FALSE(isPossible(2004, 4, 31));
  EXPECT_FALSE(isPossible(2004, 0, 1));
  EXPECT_FALSE(isPossible(2004, 13, 1));
  EXPECT_FALSE(isPossible(2004, 1, 0));
  EXPECT_FALSE(isPossible(2004, 1, 1, 24));
  EXPECT_FALSE(isPossible(2004, 1, 1, 0, 60));
  EXPECT_FALSE(isPossible(2004, 1, 1, 0, 0, 60));
  EXPECT_FALSE(isPossible(2004, 1, 1, -1));
  EXPECT_FALSE(isPossibleDate(DVFrameCaptureDateTime()));
}

}  // namespace
}  // namespace zq
