#include "backends/time/virtual_runtime.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace zq::backend {
namespace {

using namespace std::chrono_literals;
using platform::TimePoint;
using testing::ElementsAre;

VirtualOptions withSeed(std::uint64_t seed) {
  VirtualOptions options;
  options.seed = seed;
  return options;
}

TEST(VirtualRuntime, TimeBeginsAtZeroAndPassesOnlyInBlockingCalls) {
  VirtualRuntime runtime;
  EXPECT_EQ(runtime.clock().now(), TimePoint{});
  runtime.clock().sleepFor(4s);
  EXPECT_EQ(runtime.clock().now(), TimePoint(4s));
}

TEST(VirtualRuntime, AnHourOfFramesPassesAtOnce) {
  VirtualRuntime runtime;
  for (int frame = 0; frame < 25 * 3600; ++frame) runtime.clock().sleepFor(40ms);
  EXPECT_EQ(runtime.clock().now(), TimePoint(1h));
}

TEST(VirtualRuntime, ASleepForEverEndsAtTheEndOfTime) {
  VirtualRuntime runtime;
  runtime.clock().sleepFor(1s);
  runtime.clock().sleepFor(platform::Duration::max());
  EXPECT_EQ(runtime.clock().now(), TimePoint::max());
}

TEST(VirtualRuntime, SleepersWakeAtTheirTimesInTheirOrder) {
  VirtualRuntime runtime;
  std::vector<std::pair<int, TimePoint>> woken;
  std::vector<std::unique_ptr<platform::Thread>> threads;
  for (const int seconds : {3, 1, 2}) {
    threads.push_back(runtime.startThread("sleeper", [&runtime, &woken, seconds] {
      runtime.clock().sleepFor(std::chrono::seconds(seconds));
      woken.emplace_back(seconds, runtime.clock().now());
    }));
  }
  threads.clear();
  EXPECT_THAT(woken,
              ElementsAre(std::pair(1, TimePoint(1s)), std::pair(2, TimePoint(2s)), std::pair(3, TimePoint(3s))));
}

TEST(VirtualRuntime, TimersFireExactlyWhenTheyAreDueInTheOrderOfTheirDeadlines) {
  VirtualRuntime runtime;
  std::vector<std::pair<int, TimePoint>> fired;
  const auto start = [&](int number, platform::Duration delay) {
    runtime.mainLoop().startTimer(delay, [&, number] { fired.emplace_back(number, runtime.clock().now()); });
  };
  start(3, 2s);
  start(1, 1s);
  start(4, 2s);
  start(2, 1s);
  runtime.mainLoop().startTimer(3s, [&] { runtime.mainLoop().quit(); });
  runtime.mainLoop().run();
  EXPECT_THAT(fired, ElementsAre(std::pair(1, TimePoint(1s)), std::pair(2, TimePoint(1s)), std::pair(3, TimePoint(2s)),
                                 std::pair(4, TimePoint(2s))));
  EXPECT_EQ(runtime.clock().now(), TimePoint(3s));
}

TEST(VirtualRuntime, TimersThatBecameDueDuringATaskFireInTheOrderOfTheirDeadlines) {
  VirtualRuntime runtime;
  std::vector<int> fired;
  runtime.mainLoop().startTimer(2s, [&] { fired.push_back(2); });
  runtime.mainLoop().startTimer(1s, [&] { fired.push_back(1); });
  runtime.mainLoop().startTimer(3s, [&] { runtime.mainLoop().quit(); });
  runtime.mainLoop().post([&] { runtime.clock().sleepFor(1h); });
  runtime.mainLoop().run();
  EXPECT_THAT(fired, ElementsAre(1, 2));
}

TEST(VirtualRuntime, NoTimePassesForAnInvalidatedTimer) {
  VirtualRuntime runtime;
  runtime.mainLoop().startTimer(1s, [] {})->invalidate();
  runtime.mainLoop().startTimer(2s, [&] { runtime.mainLoop().quit(); });
  runtime.mainLoop().run();
  // The loop, the timer of two seconds: a third step would have been a wake-up for the invalidated one.
  EXPECT_LE(runtime.steps(), 2U);
}

TEST(VirtualRuntime, AStartedThreadDoesNotRunBeforeItsStarterBlocks) {
  VirtualRuntime runtime;
  const auto mutex = runtime.makeMutex("mutex");
  bool ran = false;
  const auto thread = runtime.startThread("thread", [&] { ran = true; });
  { const std::lock_guard guard(*mutex); }
  EXPECT_FALSE(ran);
  runtime.clock().sleepFor(1ns);
  EXPECT_TRUE(ran);
}

TEST(VirtualRuntime, OneThreadRunsAtATime) {
  VirtualRuntime runtime;
  // Guarded by nothing: a second running thread is a wrong sum, and a data race for ThreadSanitizer to find.
  int running = 0;
  int most = 0;
  std::vector<std::unique_ptr<platform::Thread>> threads;
  for (int i = 0; i < 8; ++i) {
    threads.push_back(runtime.startThread("thread", [&] {
      for (int turn = 0; turn < 100; ++turn) {
        most = std::max(most, ++running);
        std::this_thread::yield();
        --running;
        runtime.clock().sleepFor(turn % 2 == 0 ? 1ms : 0ms);
      }
    }));
  }
  threads.clear();
  EXPECT_EQ(most, 1);
}

TEST(VirtualRuntime, AFreeMutexAndAnUnheardNotificationAreNoStep) {
  VirtualRuntime runtime;
  const auto mutex = runtime.makeMutex("mutex");
  const auto condition = runtime.makeCondition("condition");
  bool ran = false;
  const auto thread = runtime.startThread("thread", [&] { ran = true; });
  for (int i = 0; i < 1000; ++i) {
    const std::lock_guard guard(*mutex);
    condition->notifyAll();
  }
  EXPECT_EQ(runtime.steps(), 0U);
  EXPECT_FALSE(ran);
}

TEST(VirtualRuntime, AThreadThatTakesAMutexAgainAtOnceDoesNotStarveTheOthers) {
  for (std::uint64_t seed = 0; seed < 20; ++seed) {
    VirtualRuntime runtime(withSeed(seed));
    const auto mutex = runtime.makeMutex("mutex");
    bool entered = false;
    const auto greedy = runtime.startThread("greedy", [&] {
      while (!entered && runtime.clock().now() < TimePoint(1h)) {
        const std::lock_guard guard(*mutex);
        runtime.clock().sleepFor(1s);
      }
    });
    runtime.clock().sleepFor(1ms);
    const std::lock_guard guard(*mutex);
    entered = true;
    EXPECT_LT(runtime.clock().now(), TimePoint(1h)) << "seed " << seed;
  }
}

/// Three threads that are always due at the same time: the order in which they ran.
std::string orderOfTies(std::uint64_t seed, std::uint64_t* hash = nullptr) {
  VirtualRuntime runtime(withSeed(seed));
  std::string order;
  {
    std::vector<std::unique_ptr<platform::Thread>> threads;
    for (const char name : {'a', 'b', 'c'}) {
      threads.push_back(runtime.startThread(std::string(1, name), [&runtime, &order, name] {
        for (int turn = 0; turn < 10; ++turn) {
          order += name;
          runtime.clock().sleepFor(1s);
        }
      }));
    }
  }
  if (hash) *hash = runtime.traceHash();
  return order;
}

TEST(VirtualRuntime, TheSameSeedGivesTheSameTrace) {
  for (std::uint64_t seed = 0; seed < 10; ++seed) {
    std::uint64_t first = 0;
    std::uint64_t second = 1;
    EXPECT_EQ(orderOfTies(seed, &first), orderOfTies(seed, &second));
    EXPECT_EQ(first, second);
  }
}

TEST(VirtualRuntime, OtherSeedsBreakTiesOtherwise) {
  std::set<std::string> orders;
  std::set<std::uint64_t> hashes;
  for (std::uint64_t seed = 0; seed < 10; ++seed) {
    std::uint64_t hash = 0;
    orders.insert(orderOfTies(seed, &hash));
    hashes.insert(hash);
  }
  EXPECT_EQ(orders.size(), 10U);
  EXPECT_EQ(hashes.size(), 10U);
}

TEST(VirtualRuntime, ANotificationAtTheVeryDeadlineComesInTimeForSomeSeedsOnly) {
  std::set<bool> outcomes;
  for (std::uint64_t seed = 0; seed < 20; ++seed) {
    VirtualRuntime runtime(withSeed(seed));
    const auto mutex = runtime.makeMutex("mutex");
    const auto condition = runtime.makeCondition("condition");
    const auto notifier = runtime.startThread("notifier", [&] {
      runtime.clock().sleepFor(1s);
      condition->notifyAll();
    });
    const std::lock_guard guard(*mutex);
    outcomes.insert(condition->waitUntil(*mutex, TimePoint(1s)));
    EXPECT_EQ(runtime.clock().now(), TimePoint(1s));
  }
  EXPECT_THAT(outcomes, ElementsAre(false, true));
}

TEST(VirtualRuntime, TwoRuntimesOnOneThreadDoNotMeet) {
  VirtualRuntime first;
  VirtualRuntime second;
  bool ran = false;
  const auto thread = first.startThread("thread", [&] { ran = true; });
  second.clock().sleepFor(1h);
  EXPECT_FALSE(ran);
  EXPECT_EQ(first.clock().now(), TimePoint{});
  first.clock().sleepFor(1s);
  EXPECT_TRUE(ran);
}

TEST(VirtualRuntimeDeathTest, AThreadThatItDidNotMakeEndsTheProgram) {
  testing::GTEST_FLAG(death_test_style) = "threadsafe";
  VirtualRuntime runtime;
  EXPECT_DEATH(std::thread([&] { runtime.mainLoop().quit(); }).join(), "a thread that it did not make");
}

TEST(VirtualRuntimeDeathTest, UnlockingAMutexThatIsNotHeldEndsTheProgram) {
  testing::GTEST_FLAG(death_test_style) = "threadsafe";
  VirtualRuntime runtime;
  const auto mutex = runtime.makeMutex("files");
  EXPECT_DEATH(mutex->unlock(), "'files' unlocked by a thread that does not hold it");
}

}  // namespace
}  // namespace zq::backend
