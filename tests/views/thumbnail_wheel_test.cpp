// How the wheel scrolls the strip.

#include <gtest/gtest.h>

#include <QWheelEvent>
#include <string>
#include <vector>

#include "views/strip_fixture.h"

namespace zq::test {
namespace {

class ThumbnailWheelTest : public StripTest {
 protected:
  /// Answers whether the view took it.
  bool turnWheel(int x, int y) {
    QWheelEvent event(QPointF(150, 20), QPointF(150, 20), QPoint(), QPoint(x, y), Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    QApplication::sendEvent(&view_, &event);
    return event.isAccepted();
  }
};

TEST_F(ThumbnailWheelTest, ScrollsOnePosterANotchBetweenTheEnds) {
  show(stripOf(10));
  EXPECT_TRUE(turnWheel(0, -120));
  EXPECT_EQ(position(), -60);
  EXPECT_EQ(bindingArea_.takeNotes(), std::vector<std::string>{"refresh"});
  EXPECT_TRUE(turnWheel(0, 120));
  EXPECT_EQ(position(), 0);
  EXPECT_TRUE(turnWheel(0, 120));
  EXPECT_EQ(position(), 0);
  EXPECT_TRUE(turnWheel(-120 * 9, 0));
  EXPECT_EQ(position(), -300);
}

TEST_F(ThumbnailWheelTest, AddsUpPartsOfAPoint) {
  show(stripOf(10));
  for (int i = 0; i < 7; ++i) turnWheel(0, -1);  // half a point each
  EXPECT_EQ(position(), -3);
}

TEST_F(ThumbnailWheelTest, EndsAGlide) {
  show(stripOf(10));
  view_.setActiveClip(clip(6));
  view_.triggerRelocationTimerWithOffset(240);
  turnWheel(0, -120);
  EXPECT_EQ(view_.animationTimer(), nullptr);
  runTicks(10);
  EXPECT_EQ(position(), -60);
}

TEST_F(ThumbnailWheelTest, GoesByTheLargerOfTheTwoAxes) {
  show(stripOf(10));
  turnWheel(6, -120);
  EXPECT_EQ(position(), -60) << "fingers do not go straight down";
  turnWheel(-120, 6);
  EXPECT_EQ(position(), -120);
  turnWheel(120, -6);
  EXPECT_EQ(position(), -60);
}

TEST_F(ThumbnailWheelTest, ATurnThatMovesNothingLeavesAGlideAlone) {
  show(stripOf(10));
  view_.setActiveClip(clip(6));
  view_.triggerRelocationTimerWithOffset(240);
  EXPECT_TRUE(turnWheel(0, -1));
  EXPECT_NE(view_.animationTimer(), nullptr) << "half a point";
  EXPECT_TRUE(turnWheel(0, 120));
  EXPECT_NE(view_.animationTimer(), nullptr) << "at the end already";
  runTicks(1001);
  EXPECT_EQ(position(), -240);
}

TEST_F(ThumbnailWheelTest, IsLeftToOthersWhenThereIsNothingToScrollOrTheMouseIsOff) {
  show(stripOf(3));
  EXPECT_FALSE(turnWheel(0, -120));
  EXPECT_EQ(position(), 60);
  show(stripOf(10, "2"));
  view_.setIsMouseDownActive(false);
  EXPECT_FALSE(turnWheel(0, -120));
  EXPECT_EQ(position(), 0);
}

}  // namespace
}  // namespace zq::test
