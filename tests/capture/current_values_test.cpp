// The current timecode and date, and how they reach the overlay.

#include <gmock/gmock.h>

#include "support/capture_fixture.h"

namespace zq::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class CurrentValues : public CaptureTest {
 protected:
  Lines overlayLines() const { return linesOf({"overlay"}); }
};

TEST_F(CurrentValues, ATimecodeIsShown) {
  controller_->setCurrentTimecodeValue(valueWithSMPTETime(timecodeOf(1, 2, 3, 4)));
  EXPECT_THAT(overlayLines(), ElementsAre("overlay: 01:02:03:04"));
}

TEST_F(CurrentValues, TheSameTimecodeObjectIsShownOnce) {
  const TimecodeValue value = valueWithSMPTETime(timecodeOf(1, 2, 3, 4));
  controller_->setCurrentTimecodeValue(value);
  controller_->setCurrentTimecodeValue(value);
  EXPECT_THAT(overlayLines(), ElementsAre("overlay: 01:02:03:04"));
}

TEST_F(CurrentValues, AnEqualTimecodeInAnotherObjectIsShownAgain) {
  controller_->setCurrentTimecodeValue(valueWithSMPTETime(timecodeOf(1, 2, 3, 4)));
  controller_->setCurrentTimecodeValue(valueWithSMPTETime(timecodeOf(1, 2, 3, 4)));
  EXPECT_THAT(overlayLines(), ElementsAre("overlay: 01:02:03:04", "overlay: 01:02:03:04"));
}

TEST_F(CurrentValues, NoTimecodeIsShownAsZero) {
  controller_->setCurrentTimecodeValue(valueWithSMPTETime(timecodeOf(1, 2, 3, 4)));
  controller_->setCurrentTimecodeValue(nullptr);
  controller_->setCurrentTimecodeValue(nullptr);
  EXPECT_THAT(overlayLines(), ElementsAre("overlay: 01:02:03:04", "overlay: 00:00:00:00"));
}

TEST_F(CurrentValues, ADateIsShownAndTheSameObjectOnlyOnce) {
  const DateValue date = dateValueAt(5);
  controller_->setCurrentDate(date);
  controller_->setCurrentDate(date);
  EXPECT_THAT(overlayLines(), ElementsAre("overlay: 2004-07-15T13:00:05"));
}

TEST_F(CurrentValues, NoDateIsShownAsNone) {
  controller_->setCurrentDate(dateValueAt(5));
  controller_->setCurrentDate(nullptr);
  controller_->setCurrentDate(nullptr);
  EXPECT_THAT(overlayLines(), ElementsAre("overlay: 2004-07-15T13:00:05", "overlay: no date"));
}

TEST_F(CurrentValues, AFrameShowsItsTimecodeBeforeItsDate) {
  startRecording();
  journal_.clear();
  play(1, 26, 7);
  EXPECT_THAT(overlayLines(), ElementsAre("overlay: 00:00:01:01", "overlay: 2004-07-15T13:00:07"));
}

TEST_F(CurrentValues, ABufferPlayedAgainShowsItsTimecodeOnce) {
  FrameRecipe recipe;
  recipe.timecode = timecodeAtFrame(recipe.system, 26);
  const platform::QTSampleBuffer buffer = bufferOf(recipe);
  deliver(buffer);
  deliver(buffer);
  EXPECT_THAT(overlayLines(), ElementsAre("overlay: 00:00:01:01"));
}

TEST_F(CurrentValues, WithoutAnOverlayTheyAreHeldAllTheSame) {
  outlets_ = {};
  makeController();
  controller_->setCurrentTimecodeValue(valueWithSMPTETime(timecodeOf(1, 2, 3, 4)));
  controller_->setCurrentDate(dateValueAt(5));
  EXPECT_EQ(controller_->currentTimecodeValue()->mHours, 1);
  EXPECT_EQ(*controller_->currentDate(), *dateValueAt(5));
}

}  // namespace
}  // namespace zq::test
