// Work aside: what a thread does beside the one whose turn it is.

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <vector>

#include "backends/time/real_runtime.h"
#include "backends/time/virtual_runtime.h"

namespace zq::backend {
namespace {

using std::chrono::seconds;

VirtualOptions overlapping() {
  VirtualOptions options;
  options.overlapsWorkAside = true;
  return options;
}

TEST(WorkAside, RunsAtOnceAndInTurnUnlessTheOptionsSayOtherwise) {
  VirtualRuntime runtime;
  std::vector<int> order;
  const auto other = runtime.startThread("other", [&] { order.push_back(2); });
  runtime.runAside([&] { order.push_back(1); });
  other->join();
  EXPECT_EQ(order, (std::vector<int>{1, 2}));
}

TEST(WorkAside, LetsAnotherThreadRunBesideIt) {
  VirtualRuntime runtime(overlapping());
  std::atomic<bool> otherRan{false};
  const auto other = runtime.startThread("other", [&] {
    otherRan = true;
    otherRan.notify_all();
  });
  // Would never end if the other thread had to wait for it.
  runtime.runAside([&] { otherRan.wait(false); });
  EXPECT_TRUE(otherRan);
}

TEST(WorkAside, LetsALittleTimePassMeanwhile) {
  VirtualRuntime runtime(overlapping());
  std::atomic<bool> slept{false};
  const auto other = runtime.startThread("other", [&] {
    runtime.clock().sleepFor(seconds(1));
    slept = true;
    slept.notify_all();
  });
  runtime.runAside([&] { slept.wait(false); });
  EXPECT_EQ(runtime.clock().now().time_since_epoch(), seconds(1));
}

TEST(WorkAside, NoTimePassesWhileAThreadWaitsForWhatItBrings) {
  VirtualRuntime runtime(overlapping());
  const auto mutex = runtime.makeMutex("mutex");
  const auto condition = runtime.makeCondition("condition");
  bool done = false;
  bool slept = false;
  const auto writer = runtime.startThread("writer", [&] {
    for (int piece = 0; piece < 5; ++piece) runtime.runAside([] {});
    const std::lock_guard guard(*mutex);
    done = true;
    condition->notifyAll();
  });
  const auto sleeper = runtime.startThread("sleeper", [&] {
    runtime.clock().sleepFor(std::chrono::milliseconds(10));
    slept = true;
  });
  {
    const std::lock_guard guard(*mutex);
    while (!done) runtime.waitForWorkAside(*condition, *mutex);
  }
  EXPECT_FALSE(slept);
  EXPECT_EQ(runtime.clock().now().time_since_epoch(), seconds(0));
  writer->join();
  sleeper->join();
  EXPECT_TRUE(slept) << "and goes on afterwards";
}

// A watchdog would see hours of silence in the moment in which the others wait for a disk.
TEST(WorkAside, IsWaitedForBeforeMoreTimePasses) {
  VirtualRuntime runtime(overlapping());
  std::atomic<int> ticks{0};
  const auto watch = runtime.startThread("watch", [&] {
    for (int i = 0; i < 1000; ++i) {
      runtime.clock().sleepFor(seconds(1));
      ++ticks;
      ticks.notify_all();
    }
  });
  int seen = 0;
  runtime.runAside([&] {
    ticks.wait(0);
    // Yields to the watch as long as it takes to get ahead, if it may.
    for (int i = 0; i < 100'000; ++i) seen = ticks;
  });
  EXPECT_EQ(seen, 1);
  EXPECT_EQ(runtime.clock().now().time_since_epoch(), seconds(1));
  watch->join();
}

TEST(WorkAside, IsWaitedForWhenNothingElseCanGoOn) {
  VirtualRuntime runtime(overlapping());
  const auto mutex = runtime.makeMutex("state");
  const auto changed = runtime.makeCondition("state changed");
  bool done = false;
  std::atomic<bool> mainWaits{false};
  const auto worker = runtime.startThread("worker", [&] {
    runtime.runAside([&] { mainWaits.wait(false); });
    mutex->lock();
    done = true;
    changed->notifyAll();
    mutex->unlock();
  });
  const auto witness = runtime.startThread("witness", [&] {
    runtime.clock().sleepFor(seconds(1));
    mainWaits = true;
    mainWaits.notify_all();
  });
  mutex->lock();
  while (!done) changed->wait(*mutex);
  mutex->unlock();
  EXPECT_TRUE(done) << "no deadlock was found while a thread worked aside";
}

TEST(WorkAside, HandsItsExceptionOn) {
  for (const bool overlaps : {false, true}) {
    VirtualOptions options;
    options.overlapsWorkAside = overlaps;
    VirtualRuntime runtime(options);
    const auto other = runtime.startThread("other", [] {});
    EXPECT_THROW(runtime.runAside([] { throw std::runtime_error("disk"); }), std::runtime_error);
    other->join();
  }
}

TEST(WorkAside, EndsBeforeARuntimeThatIsStuckIsTakenApart) {
  VirtualRuntime runtime(overlapping());
  const auto never = runtime.makeCondition("never");
  std::atomic<int> ended{0};
  const auto worker = runtime.startThread("worker", [&] {
    for (int i = 0; i < 100; ++i) runtime.runAside([&] { ++ended; });
    const auto mutex = runtime.makeMutex("mine");
    mutex->lock();
    never->wait(*mutex);
  });
  const auto sleeper = runtime.startThread("sleeper", [&] { runtime.clock().sleepFor(seconds(1)); });
  EXPECT_THROW(runtime.mainLoop().run(), StuckError);
  EXPECT_EQ(ended, 100);
}

TEST(WorkAside, ManyThreadsAtItKeepTheirOrder) {
  VirtualRuntime runtime(overlapping());
  const auto mutex = runtime.makeMutex("sum");
  int sum = 0;
  std::vector<std::unique_ptr<platform::Thread>> threads;
  for (int t = 0; t < 8; ++t) {
    threads.push_back(runtime.startThread("adder", [&] {
      for (int i = 0; i < 200; ++i) {
        int aside = 0;
        runtime.runAside([&] { aside = 1; });
        mutex->lock();
        sum += aside;
        mutex->unlock();
        if (i % 10 == 0) runtime.clock().sleepFor(seconds(1));
      }
    }));
  }
  for (const auto& thread : threads) thread->join();
  EXPECT_EQ(sum, 8 * 200);
}

TEST(WorkAside, IsPlainWorkInRealTime) {
  RealRuntime runtime;
  bool ran = false;
  runtime.runAside([&] { ran = true; });
  EXPECT_TRUE(ran);
}

}  // namespace
}  // namespace zq::backend
