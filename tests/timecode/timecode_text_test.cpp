#include "timecode/timecode_text.h"

#include <gtest/gtest.h>

namespace zq {
namespace {

TEST(TimecodeText, HasTwoDigitsAField) {
  SMPTETime time;
  time.mHours = 1;
  time.mMinutes = 2;
  time.mSeconds = 3;
  time.mFrames = 4;
  EXPECT_EQ(timecodeText(time), "01:02:03:04");
  EXPECT_EQ(timecodeText(nullTimecode), "00:00:00:00");
}

TEST(TimecodeText, WritesFieldsOutOfRangeAsTheyAre) {
  SMPTETime time;
  time.mHours = 124;
  time.mMinutes = -1;
  time.mSeconds = 60;
  time.mFrames = 45;
  EXPECT_EQ(timecodeText(time), "124:-01:60:45");
}

TEST(TimecodeText, IsAppendedInTheSameForm) {
  std::string text = "at ";
  SMPTETime time;
  time.mHours = 1;
  time.mFrames = 24;
  appendTimecodeText(text, time);
  EXPECT_EQ(text, "at 01:00:00:24");
}

}  // namespace
}  // namespace zq
