// Clips are cut where the recording date jumps.

#include "capture/date_break.h"

#include <gmock/gmock.h>

#include "support/capture_fixture.h"

namespace zq::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

DateValue date(int year, int month, int day, int hour, int minute, int second) {
  return std::make_shared<const CalendarDate>(year, month, day, hour, minute, second);
}

TEST(DateBreakRule, TheClockRunningOnIsNoBreak) {
  EXPECT_FALSE(isDateBreak(dateValueAt(0), dateValueAt(0)));
  EXPECT_FALSE(isDateBreak(dateValueAt(0), dateValueAt(1)));
}

TEST(DateBreakRule, MoreThanASecondIsABreak) {
  EXPECT_TRUE(isDateBreak(dateValueAt(0), dateValueAt(2)));
  EXPECT_TRUE(isDateBreak(dateValueAt(0), date(2005, 7, 15, 13, 0, 0)));
}

TEST(DateBreakRule, AnyStepBackwardsIsABreak) {
  EXPECT_TRUE(isDateBreak(dateValueAt(1), dateValueAt(0)));
  EXPECT_TRUE(isDateBreak(dateValueAt(0), date(1999, 12, 31, 23, 59, 59)));
}

TEST(DateBreakRule, AFrameWithoutADateIsNoBreak) {
  EXPECT_FALSE(isDateBreak(dateValueAt(0), nullptr));
  EXPECT_FALSE(isDateBreak(nullptr, nullptr));
}

TEST(DateBreakRule, TheFirstDateIsABreak) {
  EXPECT_TRUE(isDateBreak(nullptr, dateValueAt(0)));
}

TEST(DateBreakRule, AFirstDateBeforeTheReferenceDateIsABreak) {
  EXPECT_TRUE(isDateBreak(nullptr, date(1998, 1, 1, 0, 0, 0)));
}

class DateBreak : public CaptureTest {};

// The host must tolerate the empty clip: the first date is always a jump, from none.
TEST_F(DateBreak, TheFirstDatedFrameClosesTheEmptyClipThatTheStartOpened) {
  startRecording();
  play(1, 100, 0);
  EXPECT_THAT(delegateCalls(),
              ElementsAre("delegate: begin", "delegate: will", "delegate: did clip 1", "delegate: will"));
  ASSERT_EQ(delegate_.infos.size(), 1U);
  EXPECT_EQ(delegate_.infos[0].clipStartTimecode, nullptr);
  EXPECT_EQ(delegate_.infos[0].clipEndTimecode, nullptr);
  EXPECT_EQ(delegate_.infos[0].clipRecordingDate, nullptr);
  EXPECT_EQ(delegate_.infos[0].clipDuration, nullptr);
  EXPECT_EQ(controller_->currentClipInfo().clipId, "clip 2");
}

TEST_F(DateBreak, TheFirstDateIsLookedForAnewInEachRecording) {
  startRecording();
  play(1, 100, 0);
  stopRecording();
  startRecording();
  journal_.clear();
  play(2, 101, 0);
  EXPECT_THAT(delegateCalls(), ElementsAre("delegate: did clip 3", "delegate: will"));
}

TEST_F(DateBreak, AStepOfOneSecondIsNone) {
  startInSecondClip(1, 100);
  play(2, 101, 1);
  play(3, 102, 2);
  EXPECT_THAT(delegateCalls(), IsEmpty());
}

TEST_F(DateBreak, AStepOfTwoSecondsIsOne) {
  startInSecondClip(1, 100);
  play(2, 101, 2);
  EXPECT_THAT(delegateCalls(), ElementsAre("delegate: did clip 2", "delegate: will"));
}

TEST_F(DateBreak, AStepBackwardsIsOne) {
  startInSecondClip(1, 100);
  play(2, 101, -1);
  EXPECT_THAT(delegateCalls(), ElementsAre("delegate: did clip 2", "delegate: will"));
}

TEST_F(DateBreak, IsMeasuredAcrossFramesWithoutADate) {
  startInSecondClip(1, 100);
  play(2, 101, std::nullopt);
  play(3, 102, 1);
  EXPECT_THAT(delegateCalls(), IsEmpty());
  play(4, 103, std::nullopt);
  play(5, 104, 3);
  EXPECT_THAT(delegateCalls(), ElementsAre("delegate: did clip 2", "delegate: will"));
}

TEST_F(DateBreak, IsNoneWithSceneDetectionOff) {
  settings_.setBoolForKey(ZQACDetectScene, false);
  startRecording();
  journal_.clear();
  play(1, 100, 0);
  play(2, 101, 100);
  play(3, 102, -100);
  EXPECT_THAT(delegateCalls(), IsEmpty());
}

TEST_F(DateBreak, SceneDetectionIsAskedForAtEachFrame) {
  startInSecondClip(1, 100);
  settings_.setBoolForKey(ZQACDetectScene, false);
  play(2, 101, 100);
  settings_.setBoolForKey(ZQACDetectScene, true);
  play(3, 102, 100);
  EXPECT_THAT(delegateCalls(), IsEmpty());
  play(4, 103, 200);
  EXPECT_THAT(delegateCalls(), ElementsAre("delegate: did clip 2", "delegate: will"));
}

TEST_F(DateBreak, EndsTheClipAtTheTimecodeOfThePreviousFrame) {
  startInSecondClip(1, 100);
  play(2, 101, 0);
  play(3, 102, 50);
  const ClipInfo& info = delegate_.infos.at(1);
  EXPECT_EQ(*info.clipStartTimecode, timecodeOf(0, 0, 4, 0, 1));
  EXPECT_EQ(*info.clipEndTimecode, timecodeOf(0, 0, 4, 1, 1));
  EXPECT_EQ(*info.clipDuration, timecodeOf(0, 0, 0, 1));
  EXPECT_EQ(*info.clipRecordingDate, *dateValueAt(0));
}

TEST_F(DateBreak, StartsTheNextClipOnTheSameFrame) {
  startInSecondClip(1, 100);
  play(2, 101, 50);
  const ClipInfo info = controller_->currentClipInfo();
  EXPECT_EQ(info.clipId, "clip 3");
  EXPECT_EQ(*info.clipStartTimecode, timecodeOf(0, 0, 4, 1, 1));
  EXPECT_EQ(*info.clipRecordingDate, *dateValueAt(50));
  EXPECT_EQ(info.clipEndTimecode, nullptr);
}

TEST_F(DateBreak, TheThumbnailsOfTheEndedClipAreCompleteBeforeItIsTold) {
  std::vector<std::uint32_t> seen;
  delegate_.operations.accontrollerDidRecordInfo = [&](ZQACController& controller, const ClipInfo& info) {
    EXPECT_EQ(controller.thumbnailsPath(), std::nullopt);
    EXPECT_EQ(controller.moviePath(), std::nullopt);
    if (info.clipId == "clip 2") seen = thumbnailsOf(2);
  };
  startInSecondClip(1, 100);
  play(2, 101, 0);
  play(3, 102, 50);
  EXPECT_THAT(seen, ElementsAre(1U, 2U));
}

TEST_F(DateBreak, ArmsTheEndOfTheMovieBeforeTheClipIsTold) {
  TimecodeValue armed;
  startInSecondClip(1, 100);
  delegate_.operations.accontrollerDidRecordInfo = [&](ZQACController& controller, const ClipInfo& info) {
    armed = controller.timecodeEndValue();
    EXPECT_EQ(armed, info.clipEndTimecode);
  };
  play(2, 101, 50);
  ASSERT_NE(armed, nullptr);
  EXPECT_EQ(*armed, timecodeOf(0, 0, 4, 0, 1));
}

TEST_F(DateBreak, TheDateIsReplacedAfterTheClipsAreTold) {
  startInSecondClip(1, 100);
  std::vector<std::string> dates;
  delegate_.operations.accontrollerWillRecord = [&](ZQACController& controller) {
    dates.push_back(controller.currentDate()->isoString());
    return ClipPaths{};
  };
  play(2, 101, 50);
  EXPECT_THAT(dates, ElementsAre("2004-07-15T13:00:00"));
  EXPECT_EQ(*controller_->currentDate(), *dateValueAt(50));
}

}  // namespace
}  // namespace zq::test
