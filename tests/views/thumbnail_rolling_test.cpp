// How the strip rolls while the pointer rests at an edge, in virtual time.

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "views/strip_fixture.h"

namespace zq::test {
namespace {

class RollingTest : public StripTest {};

TEST_F(RollingTest, RollsByFivePointsATickTowardsTheLeftFromTheRightEdge) {
  show(stripOf(10));
  movePointer(295, 30);
  EXPECT_TRUE(view_.state().willRollToLeft);
  EXPECT_FALSE(view_.state().willRollToRight);
  ASSERT_NE(view_.rollingTimer(), nullptr);
  runTicks(1);
  EXPECT_EQ(position(), -5);
  runTicks(3);
  EXPECT_EQ(position(), -20);
}

TEST_F(RollingTest, RollsBackFromTheLeftEdge) {
  show(stripOf(10));
  movePointer(295, 30);
  runTicks(10);
  movePointer(5, 30);
  EXPECT_FALSE(view_.state().willRollToLeft);
  EXPECT_TRUE(view_.state().willRollToRight);
  runTicks(4);
  EXPECT_EQ(position(), -30);
  runTicks(100);
  EXPECT_EQ(position(), 0);
}

TEST_F(RollingTest, StopsExactlyAtTheEndWhenTheStepsFit) {
  show(stripOf(10));
  movePointer(295, 30);
  runTicks(60);
  EXPECT_EQ(position(), -300);
  runTicks(10);
  EXPECT_EQ(position(), -300);
}

// Intended: nothing holds the last step back.
TEST_F(RollingTest, PassesTheEndByLessThanOneStepWhenTheyDoNot) {
  view_.resize(303, kHeight);
  show(stripOf(10));
  movePointer(300, 30);
  runTicks(100);
  EXPECT_EQ(position(), -300);  // the end is at -297
  movePointer(5, 30);
  runTicks(59);
  EXPECT_EQ(position(), -5);
  view_.setActiveClip(clip(5));
  view_.findFirstPosterImagePosWithActivePosterImagePos(177.5F);
  ASSERT_EQ(position(), -1);
  runTicks(10);
  EXPECT_EQ(position(), 4);
}

TEST_F(RollingTest, EndsWhenThePointerLeavesTheBandAndTheViewIsIdle) {
  show(stripOf(10));
  movePointer(295, 30);
  runTicks(10);
  const auto timer = view_.rollingTimer();
  bindingArea_.takeNotes();
  movePointer(200, 30);
  EXPECT_FALSE(timer->isValid());
  EXPECT_EQ(view_.rollingTimer(), nullptr);
  EXPECT_FALSE(view_.state().willRollToLeft);
  EXPECT_EQ(view_.state().transparency, 0);
  runTicks(20);
  EXPECT_EQ(position(), -50);
  EXPECT_EQ(bindingArea_.takeNotes(), std::vector<std::string>{"refresh"});
}

TEST_F(RollingTest, EndsWhenThePointerLeavesTheView) {
  show(stripOf(10));
  movePointer(295, 30);
  movePointerAway();
  EXPECT_EQ(view_.rollingTimer(), nullptr);
}

TEST_F(RollingTest, EndsWhenTheViewIsHiddenUnderThePointer) {
  show(stripOf(10));
  view_.show();
  movePointer(295, 30);
  ASSERT_NE(view_.rollingTimer(), nullptr);
  view_.hide();
  EXPECT_EQ(view_.rollingTimer(), nullptr);
}

TEST_F(RollingTest, BandsAreTenPointsWideAndFortyHighFromTheTop) {
  show(stripOf(10));
  view_.resize(300, 70);
  draw();
  const auto rollsAt = [this](float x, float y) {
    movePointer(x, y);
    const bool rolls = view_.rollingTimer() != nullptr;
    movePointerAway();
    return rolls;
  };
  EXPECT_TRUE(rollsAt(290, 30));
  EXPECT_TRUE(rollsAt(299, 69));
  EXPECT_FALSE(rollsAt(289, 40));
  EXPECT_FALSE(rollsAt(295, 29));
  EXPECT_TRUE(rollsAt(0, 30));
  EXPECT_TRUE(rollsAt(9, 69));
  EXPECT_FALSE(rollsAt(10, 40));
  EXPECT_FALSE(rollsAt(5, 29));
}

TEST_F(RollingTest, TheUppermostRowBelongsToTheViewTheOneBelowTheLowestDoesNot) {
  show(stripOf(10));
  view_.resize(300, 40);
  draw();
  const auto rollsAt = [this](float y) {
    movePointerFromTop(295, y);
    const bool rolls = view_.rollingTimer() != nullptr;
    movePointerAway();
    return rolls;
  };
  EXPECT_TRUE(rollsAt(0));
  EXPECT_TRUE(rollsAt(39));
  EXPECT_FALSE(rollsAt(40));
  EXPECT_FALSE(rollsAt(-1));
}

TEST_F(RollingTest, TheBandFadesInOverEightyTicksAndStays) {
  show(stripOf(10));
  movePointer(295, 30);
  float expected = 0;
  for (int tick = 0; tick < 120; ++tick) {
    runTicks(1);
    if (expected < 0.8) expected = static_cast<float>(expected + 0.01);
    ASSERT_EQ(view_.state().transparency, expected) << "tick " << tick;
  }
  EXPECT_NEAR(expected, 0.8, 0.0101);
}

TEST_F(RollingTest, DrawsBothViewsAnewAtEachTick) {
  show(stripOf(10));
  movePointer(295, 30);
  runTicks(3);
  EXPECT_EQ(bindingArea_.takeNotes(), std::vector<std::string>(3, "refresh"));
}

TEST_F(RollingTest, NeverStartsForAStripThatFits) {
  show(stripOf(3));
  movePointer(295, 30);
  movePointer(5, 30);
  EXPECT_EQ(view_.rollingTimer(), nullptr);
  show(stripOf(5, "2"));  // exactly as wide
  movePointer(150, 30);
  movePointer(295, 30);
  EXPECT_EQ(view_.rollingTimer(), nullptr);
}

// Intended: a strip that fits has nowhere to roll, but its bands, once there, are not taken away.
TEST_F(RollingTest, KeepsTheBandsOfAnEarlierLongerSequence) {
  show(stripOf(10));
  show(stripOf(3, "2"));
  movePointer(295, 30);
  ASSERT_NE(view_.rollingTimer(), nullptr);
  runTicks(10);
  EXPECT_EQ(position(), 60);
  EXPECT_TRUE(view_.state().willRollToLeft);
}

TEST_F(RollingTest, DoesNotStartWhileTheMouseIsOff) {
  show(stripOf(10));
  view_.setIsMouseDownActive(false);
  movePointer(295, 30);
  EXPECT_EQ(view_.rollingTimer(), nullptr);
  EXPECT_FALSE(view_.state().willRollToLeft);
}

TEST_F(RollingTest, GoesOnWhenTheMouseIsTurnedOffMeanwhileAndEndsOnLeaving) {
  show(stripOf(10));
  movePointer(295, 30);
  view_.setIsMouseDownActive(false);
  runTicks(2);
  EXPECT_EQ(position(), -10);
  movePointerAway();
  EXPECT_EQ(view_.rollingTimer(), nullptr);
}

// Intended: the point decides the direction only; the timer starts in any case.
TEST_F(RollingTest, StartsWithoutADirectionForAPointInNeitherBand) {
  show(stripOf(10));
  view_.mouseEntered({10, 30});  // on the far edge of the left band
  ASSERT_NE(view_.rollingTimer(), nullptr);
  EXPECT_FALSE(view_.state().willRollToLeft);
  EXPECT_FALSE(view_.state().willRollToRight);
  const QImage before = draw();
  runTicks(20);
  EXPECT_EQ(position(), 0);
  EXPECT_NEAR(view_.state().transparency, 0.2, 0.001);
  EXPECT_EQ(draw(), before) << "the band is not seen";
}

TEST_F(RollingTest, KeepsTheDirectionForAPointInNeitherBand) {
  show(stripOf(10));
  view_.mouseEntered({295, 30});
  view_.mouseEntered({150, 30});
  EXPECT_TRUE(view_.state().willRollToLeft);
}

// Intended: the timer that runs already is not stopped.
TEST_F(RollingTest, EnteringTwiceRollsTwiceAsFastUntilThePointerLeaves) {
  show(stripOf(20));
  view_.mouseEntered({295, 30});
  const auto first = view_.rollingTimer();
  view_.mouseEntered({296, 30});
  EXPECT_NE(view_.rollingTimer(), first);
  EXPECT_TRUE(first->isValid());
  runTicks(3);
  EXPECT_EQ(position(), -30);
  EXPECT_NEAR(view_.state().transparency, 0.06, 0.0001);
  view_.mouseExited();
  EXPECT_FALSE(first->isValid());
  runTicks(10);
  EXPECT_EQ(position(), -30);
  EXPECT_EQ(view_.state().transparency, 0) << "nothing fades in where nobody sees it";
}

TEST_F(RollingTest, OlderTimersStopWhenTheViewIsDestroyed) {
  auto view = std::make_unique<ZQACThumbnailView>(runtime_);
  view->setActiveSequence(stripOf(10));
  view->mouseEntered({1, 1});
  const std::weak_ptr<RepeatingTimer> first = view->rollingTimer();
  view->mouseEntered({1, 1});
  view.reset();
  EXPECT_TRUE(first.expired());
  runTicks(10);
}

TEST_F(RollingTest, TimersThatOutliveTheViewDoNothing) {
  auto view = std::make_unique<ZQACThumbnailView>(runtime_);
  view->setActiveSequence(stripOf(10));
  view->mouseEntered({1, 1});
  const std::shared_ptr<RepeatingTimer> first = view->rollingTimer();
  view->mouseEntered({1, 1});
  const std::shared_ptr<RepeatingTimer> second = view->rollingTimer();
  view.reset();
  EXPECT_FALSE(first->isValid());
  EXPECT_FALSE(second->isValid());
  runTicks(10);
}

TEST_F(RollingTest, GoesFromOneBandStraightToTheOther) {
  show(stripOf(20));
  movePointer(295, 30);
  runTicks(10);
  movePointer(5, 30);
  EXPECT_TRUE(view_.state().willRollToRight);
  EXPECT_EQ(view_.state().transparency, 0);
  runTicks(1);
  EXPECT_EQ(position(), -45) << "one timer only";
}

TEST_F(RollingTest, ExitTellsTheDisplayWhateverTheMouseMay) {
  show(stripOf(10));
  view_.setIsMouseDownActive(false);
  view_.mouseExited();
  runPosted(runtime_);
  EXPECT_EQ(bindingArea_.takeNotes(), std::vector<std::string>{"refresh"});
}

TEST_F(RollingTest, BandsFollowTheEdgesOfAViewThatIsResized) {
  show(stripOf(20));
  view_.resize(400, 60);
  draw();
  EXPECT_EQ(view_.state().rollingToLeftArea.rect(), (platform::Rect{390, 20, 10, 40}));
  EXPECT_EQ(view_.state().rollingToRightArea.rect(), (platform::Rect{0, 20, 10, 40}));
  movePointer(295, 30);
  EXPECT_EQ(view_.rollingTimer(), nullptr);
  movePointer(395, 30);
  runTicks(2);
  EXPECT_EQ(position(), -10);
}

TEST_F(RollingTest, KeepsToTheEndsOfAViewThatIsResizedMeanwhile) {
  show(stripOf(10));
  movePointer(295, 30);
  runTicks(100);
  ASSERT_EQ(position(), -300);
  view_.resize(400, kHeight);
  draw();
  EXPECT_EQ(position(), -200) << "no gap at the right";
  runTicks(10);
  EXPECT_EQ(position(), -200);
  view_.resize(250, kHeight);
  draw();
  runTicks(100);
  EXPECT_EQ(position(), -350);
}

TEST_F(RollingTest, IsThereForAStripThatOverflowsOnceTheViewIsNarrower) {
  show(stripOf(5));
  view_.resize(200, kHeight);
  draw();
  EXPECT_EQ(position(), 0);
  movePointer(195, 30);
  EXPECT_NE(view_.rollingTimer(), nullptr);
}

}  // namespace
}  // namespace zq::test
