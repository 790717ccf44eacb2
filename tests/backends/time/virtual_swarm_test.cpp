// Many threads with random work, on many seeds, against what plain sums predict.

#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <memory>
#include <mutex>
#include <numeric>
#include <random>
#include <string>
#include <vector>

#include "backends/time/virtual_runtime.h"

namespace zq::backend {
namespace {

using namespace std::chrono_literals;
using platform::Duration;
using platform::TimePoint;

constexpr std::size_t kThreads = 20;

class VirtualSwarm : public testing::TestWithParam<std::uint64_t> {
 protected:
  /// Few different ones, so that ties abound.
  Duration randomDuration() { return std::chrono::milliseconds(generator_() % 5); }

  std::vector<std::vector<Duration>> randomSchedules(std::size_t length) {
    std::vector<std::vector<Duration>> schedules(kThreads, std::vector<Duration>(length));
    for (auto& schedule : schedules)
      std::generate(schedule.begin(), schedule.end(), [this] { return randomDuration(); });
    return schedules;
  }

  /// Runs `body` on each of many threads to its end.
  template <typename Body>
  void onManyThreads(Body body) {
    std::vector<std::unique_ptr<platform::Thread>> threads;
    for (std::size_t i = 0; i < kThreads; ++i) {
      threads.push_back(runtime_.startThread("thread " + std::to_string(i), [body, i] { body(i); }));
    }
    for (const auto& thread : threads) thread->join();
  }

  std::mt19937_64 generator_{GetParam()};
  VirtualRuntime runtime_{[] {
    VirtualOptions options;
    options.seed = GetParam();
    return options;
  }()};
  platform::Clock& clock_ = runtime_.clock();
};

INSTANTIATE_TEST_SUITE_P(Seeds, VirtualSwarm, testing::Range<std::uint64_t>(0, 20));

TEST_P(VirtualSwarm, EverySleeperWakesAtTheSumOfItsSleeps) {
  const auto schedules = randomSchedules(50);
  TimePoint latest;
  onManyThreads([&](std::size_t i) {
    TimePoint expected;
    for (const Duration duration : schedules[i]) {
      clock_.sleepFor(duration);
      EXPECT_EQ(clock_.now(), expected += duration);
      EXPECT_GE(clock_.now(), latest);
      latest = clock_.now();
    }
  });
  TimePoint end;
  for (const auto& schedule : schedules) {
    end = std::max(end, TimePoint(std::accumulate(schedule.begin(), schedule.end(), Duration{})));
  }
  EXPECT_EQ(clock_.now(), end);
}

// One mutex that is never free while somebody wants it is busy for the sum of all the times for which it is held.
TEST_P(VirtualSwarm, AMutexIsHeldByOneAtATimeAndNeverIdleWhileWanted) {
  const auto schedules = randomSchedules(20);
  const auto mutex = runtime_.makeMutex("mutex");
  int inside = 0;
  onManyThreads([&](std::size_t i) {
    for (const Duration duration : schedules[i]) {
      const std::lock_guard guard(*mutex);
      EXPECT_EQ(++inside, 1);
      clock_.sleepFor(duration);
      --inside;
    }
  });
  Duration sum{};
  for (const auto& schedule : schedules) sum = std::accumulate(schedule.begin(), schedule.end(), sum);
  EXPECT_EQ(clock_.now(), TimePoint(sum));
}

// Half the threads put numbers into a short queue, the other half take them out, all at their own pace.
TEST_P(VirtualSwarm, ABoundedQueueLosesNothingAndKeepsEachProducersOrder) {
  constexpr int kNumbers = 30;
  constexpr std::size_t kCapacity = 3;
  const auto paces = randomSchedules(kNumbers);
  const auto mutex = runtime_.makeMutex("queue");
  const auto changed = runtime_.makeCondition("queue");
  std::deque<std::pair<std::size_t, int>> queue;
  std::vector<std::vector<int>> taken(kThreads);

  const auto produce = [&](std::size_t producer) {
    for (int number = 0; number < kNumbers; ++number) {
      clock_.sleepFor(paces[producer][static_cast<std::size_t>(number)]);
      const std::lock_guard guard(*mutex);
      while (queue.size() == kCapacity) changed->wait(*mutex);
      queue.emplace_back(producer, number);
      changed->notifyAll();
    }
  };
  const auto consume = [&](std::size_t consumer) {
    for (const Duration pace : paces[consumer]) {
      clock_.sleepFor(pace);
      const std::lock_guard guard(*mutex);
      while (queue.empty()) changed->waitUntil(*mutex, clock_.now() + pace + 1ms);
      EXPECT_LE(queue.size(), kCapacity);
      taken[queue.front().first].push_back(queue.front().second);
      queue.pop_front();
      changed->notifyAll();
    }
  };
  onManyThreads([&](std::size_t i) { i % 2 == 0 ? produce(i) : consume(i); });

  std::vector<int> allOfThem(kNumbers);
  std::iota(allOfThem.begin(), allOfThem.end(), 0);
  for (std::size_t i = 0; i < kThreads; i += 2) EXPECT_EQ(taken[i], allOfThem);
  EXPECT_TRUE(queue.empty());
}

}  // namespace
}  // namespace zq::backend
