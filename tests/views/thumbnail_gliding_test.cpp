// How the strip glides to a clip that was picked, in virtual time.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "views/strip_fixture.h"

namespace zq::test {
namespace {

class GlidingTest : public StripTest {
 protected:
  /// The offset that brings the clip to the middle from where its poster is.
  float offsetOf(std::size_t index) const {
    return clip(index)->posterImagePos().x + 30 - static_cast<float>(view_.width()) / 2;
  }
  void glideTo(std::size_t index) {
    view_.setActiveClip(clip(index));
    view_.triggerRelocationTimerWithOffset(offsetOf(index));
  }
};

/// The scroll position after each tick, computed anew from the rules.
std::vector<float> naivePositions(float width, int clips, int index, float offset) {
  std::vector<float> positions;
  for (int tick = 1;; ++tick) {
    float first = width * 0.5F + offset - 30.0F - static_cast<float>(index * 60);
    if (first > 0) {
      first = 0;
    } else if (width - static_cast<float>(clips * 60) > first) {
      first = width - static_cast<float>(clips * 60);
    }
    positions.push_back(first);
    if (offset == 0) return positions;
    const double next = static_cast<double>(offset) * (1.0 - tick / 1000.0);
    const bool positive = offset > 0;
    offset = static_cast<float>(next);
    if (positive ? offset < 0 : offset > 0) offset = 0;
  }
}

TEST_F(GlidingTest, EndsWithThePickedClipInTheMiddle) {
  show(stripOf(10));
  glideTo(6);
  ASSERT_NE(view_.animationTimer(), nullptr);
  runTicks(1001);
  EXPECT_EQ(position(), -240);
  EXPECT_EQ(view_.animationTimer(), nullptr);
}

TEST_F(GlidingTest, LeavesTheStripWhereItIsAtTheFirstTick) {
  show(stripOf(10));
  glideTo(6);
  runTicks(1);
  EXPECT_EQ(position(), 0);
  runTicks(1);
  EXPECT_LT(position(), 0);
}

TEST_F(GlidingTest, GoesTickByTickAsTheRulesSay) {
  std::mt19937 random(5);
  std::uniform_real_distribution<float> offsets(-900, 900);
  for (int round = 0; round < 40; ++round) {
    const int clips = 6 + static_cast<int>(random() % 20);
    const int index = static_cast<int>(random() % static_cast<unsigned>(clips));
    const float offset = round == 0 ? 0 : offsets(random);
    sequence_ = stripOf(static_cast<std::size_t>(clips));
    view_.setActiveSequence(sequence_);
    view_.setActiveClip(clip(static_cast<std::size_t>(index)));
    view_.triggerRelocationTimerWithOffset(offset);
    const std::vector<float> expected = naivePositions(300, clips, index, offset);
    EXPECT_LE(expected.size(), 1001U);
    for (std::size_t tick = 0; tick < expected.size(); ++tick) {
      ASSERT_NE(view_.animationTimer(), nullptr) << "round " << round << ", tick " << tick;
      runTicks(1);
      ASSERT_EQ(position(), expected[tick]) << "round " << round << ", tick " << tick;
    }
    ASSERT_EQ(view_.animationTimer(), nullptr) << "round " << round;
  }
}

TEST_F(GlidingTest, AppliesTheFactorToWhatEarlierTicksLeft) {
  show(stripOf(10));
  view_.setActiveClip(clip(6));
  view_.triggerRelocationTimerWithOffset(100);
  runTicks(61);
  const float way = position() + 240;  // a linear glide would have 94 left
  EXPECT_LT(way, 17);
  EXPECT_GT(way, 15);
}

TEST_F(GlidingTest, IsOverOneSecondAfterItsStartWhenTheMachineIsSlow) {
  show(stripOf(10));
  glideTo(6);
  runTicks(1);
  runtime_.clock().sleepFor(std::chrono::seconds(1));  // the main thread was busy
  runTicks(2);
  EXPECT_EQ(position(), -240);
  EXPECT_EQ(view_.animationTimer(), nullptr);
}

TEST_F(GlidingTest, DrawsBothViewsAnewAtEachTick) {
  show(stripOf(10));
  glideTo(6);
  runPosted(runtime_);
  bindingArea_.takeNotes();
  runTicks(5);
  EXPECT_EQ(bindingArea_.takeNotes(), std::vector<std::string>(5, "refresh"));
}

TEST_F(GlidingTest, StopsAtTheEndsOfTheStrip) {
  show(stripOf(10));
  glideTo(0);
  runTicks(1001);
  EXPECT_EQ(position(), 0);
  glideTo(9);
  runTicks(1001);
  EXPECT_EQ(position(), -300);
}

TEST_F(GlidingTest, StartsAgainFromWhereTheStripIsWhenTriggeredAgain) {
  show(stripOf(20));
  glideTo(15);
  runTicks(60);
  const float there = position();
  ASSERT_LT(there, 0);
  const auto first = view_.animationTimer();
  draw();
  glideTo(2);
  EXPECT_FALSE(first->isValid());
  EXPECT_NE(view_.animationTimer(), first);
  runTicks(1);
  EXPECT_NEAR(position(), there, 0.001);
  runTicks(1000);
  EXPECT_EQ(position(), 0);
}

TEST_F(GlidingTest, EndsWhenAPosterIsFoundUnderAPoint) {
  show(stripOf(10));
  glideTo(6);
  runTicks(30);
  const float there = position();
  const auto timer = view_.animationTimer();
  EXPECT_EQ(view_.findThumbnailForPoint({70, 30}), clip(1));  // where it was drawn last
  EXPECT_EQ(view_.animationTimer(), nullptr);
  EXPECT_FALSE(timer->isValid());
  runTicks(100);
  EXPECT_EQ(position(), there);
}

TEST_F(GlidingTest, GoesOnWhenNoPosterIsUnderThePoint) {
  show(stripOf(10));
  glideTo(6);
  EXPECT_EQ(view_.findThumbnailForPoint({70, 5}), nullptr);
  EXPECT_NE(view_.animationTimer(), nullptr);
}

TEST_F(GlidingTest, PlacesAClipWithoutATimerToo) {
  show(stripOf(10));
  view_.setActiveClip(clip(5));
  view_.findFirstPosterImagePosWithActivePosterImagePos(0);
  EXPECT_EQ(position(), 150 - 30 - 300);
  view_.findFirstPosterImagePosWithActivePosterImagePos(20);
  EXPECT_EQ(position(), -160);
  view_.findFirstPosterImagePosWithActivePosterImagePos(1000);
  EXPECT_EQ(position(), 0);
  view_.findFirstPosterImagePosWithActivePosterImagePos(-1000);
  EXPECT_EQ(position(), -300);
}

TEST_F(GlidingTest, PutsAStripThatIsNarrowerThanTheViewAtItsRight) {
  show(stripOf(3));
  view_.setActiveClip(clip(2));
  view_.findFirstPosterImagePosWithActivePosterImagePos(-500);
  EXPECT_EQ(position(), 120);  // intended: to the right, with a gap at the left
  view_.findFirstPosterImagePosWithActivePosterImagePos(0);
  EXPECT_EQ(position(), 120);
  view_.findFirstPosterImagePosWithActivePosterImagePos(1);
  EXPECT_EQ(position(), 0);
}

TEST_F(GlidingTest, WithoutAnActiveClipTakesTheFirstOne) {
  show(stripOf(10));
  view_.findFirstPosterImagePosWithActivePosterImagePos(-150);
  EXPECT_EQ(position(), -30);
}

TEST_F(GlidingTest, EndsAtOnceForAnOffsetThatIsNoNumber) {
  for (const float offset : {std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity()}) {
    show(stripOf(10, std::isnan(offset) ? "1" : "2"));
    view_.setActiveClip(clip(6));
    view_.triggerRelocationTimerWithOffset(offset);
    runTicks(1);
    EXPECT_EQ(position(), -240);
    EXPECT_EQ(view_.animationTimer(), nullptr);
  }
}

TEST_F(GlidingTest, ReachesTheMiddleOfAViewThatIsResizedMeanwhile) {
  show(stripOf(10));
  glideTo(5);
  runTicks(50);
  view_.resize(400, kHeight);
  draw();
  EXPECT_NE(view_.animationTimer(), nullptr);
  runTicks(1000);
  EXPECT_EQ(position(), 200 - 30 - 300);
}

TEST_F(GlidingTest, EndsInAViewThatGrowsWiderThanTheStrip) {
  show(stripOf(10));
  glideTo(6);
  runTicks(50);
  view_.resize(700, kHeight);
  draw();
  EXPECT_EQ(view_.animationTimer(), nullptr);
  EXPECT_EQ(position(), 50);
}

TEST_F(GlidingTest, EndsWithAnotherStripThatFits) {
  show(stripOf(20));
  glideTo(15);
  runTicks(50);
  bindingArea_.takeNotes();
  view_.setActiveSequence(stripOf(3, "2"));
  runTicks(1);
  EXPECT_EQ(position(), 60);
  EXPECT_EQ(view_.animationTimer(), nullptr);
  EXPECT_EQ(bindingArea_.takeNotes(), (std::vector<std::string>{"sequence 2", "refresh", "refresh"}));
  runTicks(1000);
  EXPECT_EQ(position(), 60);
}

TEST_F(GlidingTest, ATimerThatOutlivesTheViewDoesNothing) {
  auto view = std::make_unique<ZQACThumbnailView>(runtime_);
  view->setActiveSequence(stripOf(10));
  view->triggerRelocationTimerWithOffset(100);
  const std::shared_ptr<RepeatingTimer> timer = view->animationTimer();
  view.reset();
  EXPECT_FALSE(timer->isValid());
  runTicks(10);
}

TEST_F(GlidingTest, StopsWhenTheViewIsDestroyed) {
  auto view = std::make_unique<ZQACThumbnailView>(runtime_);
  view->setActiveSequence(stripOf(10));
  view->triggerRelocationTimerWithOffset(100);
  const std::weak_ptr<RepeatingTimer> timer = view->animationTimer();
  view.reset();
  EXPECT_TRUE(timer.expired());
  runTicks(10);  // nothing of the view's is called
}

TEST_F(GlidingTest, AndRollingMayRunTogetherAndTheGlideHasTheLastWord) {
  show(stripOf(20));
  view_.setActiveClip(clip(10));
  view_.mouseEntered({295, 30});
  view_.triggerRelocationTimerWithOffset(0);
  runTicks(1);  // the rolling tick comes first, and the glide sets the position outright
  EXPECT_EQ(position(), 150 - 30 - 600);
  EXPECT_EQ(view_.animationTimer(), nullptr);
  EXPECT_NE(view_.rollingTimer(), nullptr);
  runTicks(1);
  EXPECT_EQ(position(), 150 - 30 - 600 - 5);
}

}  // namespace
}  // namespace zq::test
