#include "capture/current_clip.h"

#include <gtest/gtest.h>

#include "support/capture_buffers.h"

namespace zq::test {
namespace {

TEST(CurrentClipTest, KnowsNothingAtFirst) {
  const ClipInfo info = CurrentClip().info();
  EXPECT_EQ(info.clipId, std::nullopt);
  EXPECT_EQ(info.clipRecordingDate, nullptr);
  EXPECT_EQ(info.clipStartTimecode, nullptr);
  EXPECT_EQ(info.clipEndTimecode, nullptr);
  EXPECT_EQ(info.clipDuration, nullptr);
  EXPECT_EQ(info.clipAspectRatio, 0);
}

TEST(CurrentClipTest, AnEndGivesItsDuration) {
  CurrentClip clip;
  clip.startTimecode = valueWithSMPTETime(timecodeOf(0, 0, 59, 20, 1));
  clip.setEndTimecode(valueWithSMPTETime(timecodeOf(0, 1, 0, 5, 1)));
  EXPECT_EQ(*clip.info().clipDuration, timecodeOf(0, 0, 0, 10));
}

// The start says how many frames a second has.
TEST(CurrentClipTest, TheDurationBorrowsTheFramesOfItsOwnSystem) {
  CurrentClip clip;
  clip.startTimecode = valueWithSMPTETime(timecodeOf(0, 0, 0, 20, 2));
  clip.setEndTimecode(valueWithSMPTETime(timecodeOf(0, 0, 1, 5, 2)));
  EXPECT_EQ(*clip.info().clipDuration, timecodeOf(0, 0, 0, 15));
}

TEST(CurrentClipTest, WithoutAStartAnEndGivesNoDuration) {
  CurrentClip clip;
  clip.setEndTimecode(valueWithSMPTETime(timecodeOf(0, 1, 0, 5, 1)));
  EXPECT_NE(clip.info().clipEndTimecode, nullptr);
  EXPECT_EQ(clip.info().clipDuration, nullptr);
}

TEST(CurrentClipTest, TheSameEndAgainLeavesTheDuration) {
  CurrentClip clip;
  const TimecodeValue end = valueWithSMPTETime(timecodeOf(0, 1, 0, 5, 1));
  clip.startTimecode = valueWithSMPTETime(timecodeOf(0, 0, 0, 5, 1));
  clip.setEndTimecode(end);
  clip.startTimecode = valueWithSMPTETime(timecodeOf(0, 0, 30, 5, 1));
  clip.setEndTimecode(end);
  EXPECT_EQ(*clip.info().clipDuration, timecodeOf(0, 1, 0, 0));
}

TEST(CurrentClipTest, AnEqualEndInAnotherObjectGivesTheDurationAnew) {
  CurrentClip clip;
  clip.startTimecode = valueWithSMPTETime(timecodeOf(0, 0, 0, 5, 1));
  clip.setEndTimecode(valueWithSMPTETime(timecodeOf(0, 1, 0, 5, 1)));
  clip.startTimecode = valueWithSMPTETime(timecodeOf(0, 0, 30, 5, 1));
  clip.setEndTimecode(valueWithSMPTETime(timecodeOf(0, 1, 0, 5, 1)));
  EXPECT_EQ(*clip.info().clipDuration, timecodeOf(0, 0, 30, 0));
}

TEST(CurrentClipTest, BeginForgetsDateStartAndEndButNotTheRest) {
  CurrentClip clip;
  clip.clipId = "one";
  clip.aspectRatio = 1;
  clip.recordingDate = dateValueAt(0);
  clip.startTimecode = valueWithSMPTETime(timecodeOf(0, 0, 0, 5, 1));
  clip.setEndTimecode(valueWithSMPTETime(timecodeOf(0, 0, 1, 5, 1)));
  clip.begin();
  const ClipInfo info = clip.info();
  EXPECT_EQ(info.clipRecordingDate, nullptr);
  EXPECT_EQ(info.clipStartTimecode, nullptr);
  EXPECT_EQ(info.clipEndTimecode, nullptr);
  EXPECT_EQ(info.clipId, "one");
  EXPECT_EQ(info.clipAspectRatio, 1);
  ASSERT_NE(info.clipDuration, nullptr);
  EXPECT_EQ(*info.clipDuration, timecodeOf(0, 0, 1, 0));
}

}  // namespace
}  // namespace zq::test
