#include "views/repeating_timer.h"

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <optional>
#include <vector>

#include "backends/time/virtual_runtime.h"

namespace zq {
namespace {

using std::chrono::milliseconds;

class RepeatingTimerTest : public testing::Test {
 protected:
  void runUntil(milliseconds end) {
    runtime_.mainLoop().startTimer(end - runtime_.clock().now().time_since_epoch() + std::chrono::microseconds(500),
                                   [this] { runtime_.mainLoop().quit(); });
    runtime_.mainLoop().run();
  }
  platform::Duration now() const { return runtime_.clock().now().time_since_epoch(); }

  mutable backend::VirtualRuntime runtime_;
  std::vector<platform::Duration> fired_;
};

TEST_F(RepeatingTimerTest, FiresEveryIntervalFromTheFirstOnOn) {
  const RepeatingTimer timer(runtime_.mainLoop(), milliseconds(2), [this] { fired_.push_back(now()); });
  runUntil(milliseconds(7));
  EXPECT_EQ(fired_, (std::vector<platform::Duration>{milliseconds(2), milliseconds(4), milliseconds(6)}));
  EXPECT_TRUE(timer.isValid());
}

TEST_F(RepeatingTimerTest, FiresNoMoreOnceInvalidated) {
  RepeatingTimer timer(runtime_.mainLoop(), milliseconds(1), [this] { fired_.push_back(now()); });
  runUntil(milliseconds(3));
  timer.invalidate();
  EXPECT_FALSE(timer.isValid());
  runUntil(milliseconds(9));
  EXPECT_EQ(fired_.size(), 3U);
  timer.invalidate();  // again does nothing
  EXPECT_FALSE(timer.isValid());
}

TEST_F(RepeatingTimerTest, IsValidInItsOwnTickWhichMayInvalidateIt) {
  std::optional<RepeatingTimer> timer;
  bool wasValid = false;
  timer.emplace(runtime_.mainLoop(), milliseconds(1), [&] {
    fired_.push_back(now());
    wasValid = timer->isValid();
    timer->invalidate();
  });
  runUntil(milliseconds(5));
  EXPECT_TRUE(wasValid);
  EXPECT_FALSE(timer->isValid());
  EXPECT_EQ(fired_.size(), 1U);
}

TEST_F(RepeatingTimerTest, MayBeDestroyedByItsOwnTick) {
  std::unique_ptr<RepeatingTimer> timer;
  const auto kept = std::make_shared<int>(7);
  int seen = 0;
  timer = std::make_unique<RepeatingTimer>(runtime_.mainLoop(), milliseconds(1), [&timer, &seen, kept] {
    timer.reset();
    seen += *kept;  // what the tick holds is still there
  });
  runUntil(milliseconds(5));
  EXPECT_EQ(seen, 7);
  EXPECT_EQ(kept.use_count(), 1) << "the tick is let go of";
}

TEST_F(RepeatingTimerTest, StopsWhenDestroyedAndLetsGoOfItsTick) {
  const auto kept = std::make_shared<int>(0);
  {
    const RepeatingTimer timer(runtime_.mainLoop(), milliseconds(1), [kept] { ++*kept; });
    runUntil(milliseconds(2));
  }
  runUntil(milliseconds(9));
  EXPECT_EQ(*kept, 2);
  EXPECT_EQ(kept.use_count(), 1);
}

TEST_F(RepeatingTimerTest, IsDroppedByALoopThatEndsBeforeIt) {
  auto runtime = std::make_unique<backend::VirtualRuntime>();
  const auto kept = std::make_shared<int>(0);
  RepeatingTimer timer(runtime->mainLoop(), milliseconds(1), [kept] { ++*kept; });
  runtime.reset();
  timer.invalidate();
  EXPECT_EQ(*kept, 0);
}

}  // namespace
}  // namespace zq
