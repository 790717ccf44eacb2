// Real recordings, read as they are.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "dv/dif_sequence.h"
#include "dv/frame_capture_date_time.h"
#include "dv/frame_header.h"
#include "dv/frame_timecode.h"
#include "dv/recording_date_scan.h"
#include "support/dv_frames.h"
#include "support/dv_recording_log.h"
#include "timecode/timecode_text.h"

namespace zq {
namespace {

std::vector<SharedBytes> fixture(const std::string& name, DVSystem system) {
  return test::framesOf(std::string(DECKHAND_FIXTURES) + "/" + name, system);
}

std::vector<std::string> timecodesOf(const std::vector<SharedBytes>& frames) {
  std::vector<std::string> texts;
  for (const SharedBytes& frame : frames) {
    const auto timecode = firstTimecode(frame);
    texts.push_back(timecode ? timecodeText(timecode->time) : "none");
  }
  return texts;
}

/// What holds for every frame of a clean recording.
void expectClean(const std::vector<SharedBytes>& frames, DVSystem system) {
  for (const SharedBytes& frame : frames) {
    EXPECT_TRUE(looksLikeFrameHeader(frame.bytes()));
    EXPECT_EQ(systemOfHeader(frame.bytes()), system);
    EXPECT_FALSE(isSecondChannel(frame.bytes()));
    for (int index = 0; index < sequenceCountOf(system); ++index) {
      test::DVRecordingLog log;
      DVDifSequence sequence(frame, static_cast<std::uint32_t>(index), &log);
      sequence.decodeSequence();
      EXPECT_EQ(sequence.sequenceNumber(), static_cast<std::uint32_t>(index));
      EXPECT_TRUE(sequence.containsExpectedSections());
      EXPECT_EQ(sequence.aspectRatio(), 1);
      EXPECT_TRUE(log.lines.empty());
    }
  }
}

TEST(Fixtures, DigitalEightRecordingHasTimecodeAndDate) {
  const auto frames = fixture("sony-digital8-ntsc-5-frames.dv", DVSystem::ntsc525_60);
  ASSERT_EQ(frames.size(), 5U);
  const std::vector<std::string> expected{"00:00:02:17", "00:00:02:18", "00:00:02:19", "00:00:02:20", "00:00:02:21"};
  EXPECT_EQ(timecodesOf(frames), expected);
  for (const SharedBytes& frame : frames) {
    EXPECT_EQ(firstTimecode(frame)->time.mType, 2U);
    EXPECT_TRUE(firstTimecode(frame)->dropFrame);
    const RecordingDateScan scan = scanRecordingDate(frame);
    ASSERT_NE(scan.date, nullptr);
    EXPECT_EQ(scan.date->isoString(), "2024-07-08T19:55:58");
    EXPECT_TRUE(isPossibleDate(*scan.captureDateTime));
    EXPECT_EQ(scan.aspectRatio, 1);
  }
  expectClean(frames, DVSystem::ntsc525_60);
}

TEST(Fixtures, DigitalEightDateIsAbsentFromTheFirstHalf) {
  const auto frames = fixture("sony-digital8-ntsc-5-frames.dv", DVSystem::ntsc525_60);
  for (std::uint32_t index = 0; index < 10; ++index) {
    DVDifSequence sequence(frames.at(0), index);
    sequence.decodeSequence();
    EXPECT_EQ(sequence.date() != nullptr, index >= 5) << index;
  }
}

TEST(Fixtures, SingleDigitalEightFrameIsOfTheSameRecording) {
  const auto frames = fixture("sony-digital8-ntsc-1-frame.dv", DVSystem::ntsc525_60);
  ASSERT_EQ(frames.size(), 1U);
  EXPECT_EQ(timecodesOf(frames), std::vector<std::string>{"00:00:02:20"});
  EXPECT_EQ(scanRecordingDate(frames.at(0)).date->isoString(), "2024-07-08T19:55:58");
  expectClean(frames, DVSystem::ntsc525_60);
}

TEST(Fixtures, PalRecordingHasTimecodeBehindEmptySlotsAndNoDate) {
  const auto frames = fixture("pal-undated-15-frames.dv", DVSystem::pal625_50);
  ASSERT_EQ(frames.size(), 15U);
  std::vector<std::string> expected;
  for (int frame = 10; frame < 25; ++frame) expected.push_back("01:00:05:" + std::to_string(frame));
  EXPECT_EQ(timecodesOf(frames), expected);
  for (const SharedBytes& frame : frames) {
    EXPECT_EQ(firstTimecode(frame)->time.mType, 1U);
    EXPECT_FALSE(firstTimecode(frame)->dropFrame);
    const RecordingDateScan scan = scanRecordingDate(frame);
    EXPECT_EQ(scan.date, nullptr);
    EXPECT_FALSE(scan.outOfRange);
    EXPECT_EQ(scan.aspectRatio, 1);
  }
  expectClean(frames, DVSystem::pal625_50);
}

}  // namespace
}  // namespace zq
