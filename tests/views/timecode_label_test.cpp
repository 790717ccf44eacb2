#include "views/timecode_label.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace zq {
namespace {

SMPTETime timecodeOf(int hours, int minutes, int seconds, int frames) {
  SMPTETime time;
  time.mHours = static_cast<std::int16_t>(hours);
  time.mMinutes = static_cast<std::int16_t>(minutes);
  time.mSeconds = static_cast<std::int16_t>(seconds);
  time.mFrames = static_cast<std::int16_t>(frames);
  return time;
}

TEST(TimecodeLabel, HasAStopBeforeTheFrames) {
  EXPECT_EQ(timecodeLabel(timecodeOf(12, 34, 56, 7)), "12:34:56.07");
  EXPECT_EQ(timecodeLabel(nullTimecode), "00:00:00.00");
}

TEST(TimecodeLabel, GrowsWithTheHours) {
  EXPECT_EQ(timecodeLabel(timecodeOf(100, 0, 0, 0)), "100:00:00.00");
}

TEST(TimecodeLabel, ShowsWhatABrokenRecordSays) {
  EXPECT_EQ(timecodeLabel(timecodeOf(-1, 75, 99, 30)), "-1:75:99.30");
}

}  // namespace
}  // namespace zq
