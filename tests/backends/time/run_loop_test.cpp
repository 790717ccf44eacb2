#include "backends/time/run_loop.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <vector>

#include "backends/time/every_runtime.h"

namespace zq::backend {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;

class RunLoopTest : public EveryRuntime {
 protected:
  std::function<void()> note(int number) {
    return [this, number] { seen_.push_back(number); };
  }
  void quitAfterWhatIsDue() {
    loop_.startTimer(0ns, [this] { loop_.quit(); });
  }

  std::vector<int> seen_;
};

INSTANTIATE_TEST_SUITE_P(Runtimes, RunLoopTest, kEveryRuntime, nameOf);

TEST_P(RunLoopTest, RunsTasksInTheOrderInWhichTheyWerePosted) {
  for (int number = 1; number <= 3; ++number) loop_.post(note(number));
  loop_.post([this] { loop_.quit(); });
  loop_.run();
  EXPECT_THAT(seen_, ElementsAre(1, 2, 3));
}

TEST_P(RunLoopTest, RunsATaskPostedByATaskAfterThoseThatWait) {
  loop_.post([this] {
    loop_.post([this] {
      seen_.push_back(3);
      loop_.quit();
    });
    seen_.push_back(1);
  });
  loop_.post(note(2));
  loop_.run();
  EXPECT_THAT(seen_, ElementsAre(1, 2, 3));
}

TEST_P(RunLoopTest, RunsTasksOfAnotherThreadOnTheMainThreadInTheirOrder) {
  bool onMainThread = true;
  const auto poster = runtime_->startThread("poster", [&] {
    EXPECT_FALSE(loop_.isCurrent());
    for (int number = 0; number < 100; ++number) {
      loop_.post([&, number] {
        onMainThread = onMainThread && loop_.isCurrent();
        seen_.push_back(number);
      });
    }
    loop_.post([this] { loop_.quit(); });
  });
  loop_.run();
  EXPECT_TRUE(onMainThread);
  ASSERT_EQ(seen_.size(), 100U);
  EXPECT_TRUE(std::is_sorted(seen_.begin(), seen_.end()));
}

TEST_P(RunLoopTest, FiresTimersWithoutDelayInTheOrderInWhichTheyWereStarted) {
  for (int number = 1; number <= 5; ++number) loop_.startTimer(0ns, note(number));
  quitAfterWhatIsDue();
  loop_.run();
  EXPECT_THAT(seen_, ElementsAre(1, 2, 3, 4, 5));
}

TEST_P(RunLoopTest, TakesANegativeDelayForNone) {
  loop_.startTimer(-1h, [this] { loop_.quit(); });
  loop_.run();
}

TEST_P(RunLoopTest, NeverFiresATimerBeforeItsDelayHasPassed) {
  const platform::TimePoint before = clock_.now();
  loop_.startTimer(1ms, [this] { loop_.quit(); });
  loop_.run();
  EXPECT_GE(clock_.now() - before, 1ms);
}

TEST_P(RunLoopTest, FiresATimerStartedByAnotherThreadOnTheMainThread) {
  bool onMainThread = false;
  const auto starter = runtime_->startThread("starter", [&] {
    loop_.startTimer(0ns, [&] {
      onMainThread = loop_.isCurrent();
      loop_.quit();
    });
  });
  loop_.run();
  EXPECT_TRUE(onMainThread);
}

TEST_P(RunLoopTest, WakesForATimerThatIsDueBeforeTheOneThatItWaitsFor) {
  loop_.startTimer(24h, note(1));
  const auto starter = runtime_->startThread("starter", [&] { loop_.startTimer(1us, [this] { loop_.quit(); }); });
  loop_.run();
  EXPECT_TRUE(seen_.empty());
}

TEST_P(RunLoopTest, NeverFiresAnInvalidatedTimer) {
  const auto timer = loop_.startTimer(0ns, note(1));
  EXPECT_TRUE(timer->isValid());
  timer->invalidate();
  EXPECT_FALSE(timer->isValid());
  quitAfterWhatIsDue();
  loop_.run();
  EXPECT_TRUE(seen_.empty());
}

TEST_P(RunLoopTest, NeverFiresATimerInvalidatedByOneThatIsDueAtTheSameTime) {
  std::shared_ptr<platform::Timer> second;
  loop_.startTimer(0ns, [&] { second->invalidate(); });
  second = loop_.startTimer(0ns, note(2));
  quitAfterWhatIsDue();
  loop_.run();
  EXPECT_TRUE(seen_.empty());
}

TEST_P(RunLoopTest, ATimerIsNoLongerValidWhenItFires) {
  std::shared_ptr<platform::Timer> timer;
  timer = loop_.startTimer(0ns, [&] {
    EXPECT_FALSE(timer->isValid());
    timer->invalidate();
    loop_.quit();
  });
  loop_.run();
  EXPECT_FALSE(timer->isValid());
}

TEST_P(RunLoopTest, KeepsATimerThatNobodyElseKeeps) {
  loop_.startTimer(1us, [this] { loop_.quit(); });
  loop_.run();
}

TEST_P(RunLoopTest, AnInvalidatedTimerLetsGoOfWhatItsFunctionHolds) {
  const auto held = std::make_shared<int>(0);
  const auto timer = loop_.startTimer(24h, [held] {});
  timer->invalidate();
  EXPECT_EQ(held.use_count(), 1);
}

TEST_P(RunLoopTest, ATaskThatPostsItselfAgainDoesNotKeepTimersFromFiring) {
  bool fired = false;
  std::function<void()> again = [&] {
    clock_.sleepFor(1us);
    if (!fired) loop_.post(again);
  };
  loop_.post(again);
  loop_.startTimer(3us, [&] {
    fired = true;
    loop_.quit();
  });
  loop_.run();
  EXPECT_TRUE(fired);
}

TEST_P(RunLoopTest, ATimerThatStartsItselfAgainDoesNotKeepTasksFromRunning) {
  std::function<void()> again = [&] { loop_.startTimer(0ns, again); };
  again();
  int turns = 0;
  std::function<void()> task = [&] { ++turns < 3 ? loop_.post(task) : loop_.quit(); };
  loop_.post(task);
  loop_.run();
  EXPECT_EQ(turns, 3);
}

TEST_P(RunLoopTest, QuitLetsTheRunningTaskFinishAndKeepsTheRestForTheNextRun) {
  loop_.post([this] {
    loop_.quit();
    seen_.push_back(1);
  });
  loop_.post([this] {
    seen_.push_back(2);
    loop_.quit();
  });
  loop_.run();
  EXPECT_THAT(seen_, ElementsAre(1));
  loop_.run();
  EXPECT_THAT(seen_, ElementsAre(1, 2));
}

TEST_P(RunLoopTest, QuitBeforeRunMakesOnlyTheNextRunReturnAtOnce) {
  loop_.post([this] {
    seen_.push_back(1);
    loop_.quit();
  });
  loop_.quit();
  loop_.run();
  EXPECT_TRUE(seen_.empty());
  loop_.run();
  EXPECT_THAT(seen_, ElementsAre(1));
}

TEST_P(RunLoopTest, QuitOfAnotherThreadEndsALoopThatWaits) {
  const auto quitter = runtime_->startThread("quitter", [this] { loop_.quit(); });
  loop_.run();
}

TEST_P(RunLoopTest, QuitEndsTheInnermostRun) {
  loop_.post([this] {
    loop_.post([this] { loop_.quit(); });
    loop_.run();
    seen_.push_back(1);
    loop_.quit();
  });
  loop_.run();
  EXPECT_THAT(seen_, ElementsAre(1));
}

TEST_P(RunLoopTest, DestroyingTheLoopDropsWhatIsLeft) {
  const auto held = std::make_shared<int>(0);
  std::shared_ptr<platform::Timer> timer;
  {
    RunLoop loop(*runtime_);
    loop.post([held, this] { seen_.push_back(1); });
    timer = loop.startTimer(0ns, [held, this] { seen_.push_back(2); });
  }
  EXPECT_TRUE(seen_.empty());
  EXPECT_EQ(held.use_count(), 1);
  EXPECT_FALSE(timer->isValid());
  timer->invalidate();
}

TEST_P(RunLoopTest, WhatIsDroppedMayPostToTheLoopThatDropsIt) {
  const auto held = std::make_shared<int>(0);
  {
    RunLoop loop(*runtime_);
    loop.post([last = std::shared_ptr<void>(nullptr, [&loop, held](void*) { loop.post([held] {}); })] {});
  }
  EXPECT_EQ(held.use_count(), 1);
}

}  // namespace
}  // namespace zq::backend
