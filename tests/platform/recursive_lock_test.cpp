#include "platform/recursive_lock.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <mutex>

#include "backends/time/every_runtime.h"

namespace zq::platform {
namespace {

using namespace std::chrono_literals;

class RecursiveLockTest : public backend::EveryRuntime {
 protected:
  RecursiveLock lock_{*runtime_, "lock"};
};

INSTANTIATE_TEST_SUITE_P(Runtimes, RecursiveLockTest, backend::kEveryRuntime, backend::nameOf);

TEST_P(RecursiveLockTest, ItsOwnerMayTakeItAgain) {
  const std::lock_guard outer(lock_);
  const std::lock_guard inner(lock_);
}

TEST_P(RecursiveLockTest, FreeForOthersOnlyWhenGivenUpAsOftenAsTaken) {
  bool taken = false;
  bool givenUp = false;
  const auto holder = runtime_->startThread("holder", [&] {
    lock_.lock();
    lock_.lock();
    taken = true;
    lock_.unlock();
    clock_.sleepFor(1us);
    givenUp = true;
    lock_.unlock();
  });
  for (bool done = false; !done;) {
    clock_.sleepFor(1us);
    const std::lock_guard guard(lock_);
    EXPECT_EQ(taken, givenUp);
    done = givenUp;
  }
}

TEST_P(RecursiveLockTest, Excludes) {
  int inside = 0;
  int most = 0;
  const auto pass = [&] {
    for (int i = 0; i < 20; ++i) {
      const std::lock_guard outer(lock_);
      const std::lock_guard inner(lock_);
      most = std::max(most, ++inside);
      clock_.sleepFor(1us);
      --inside;
    }
  };
  {
    const auto first = runtime_->startThread("first", pass);
    const auto second = runtime_->startThread("second", pass);
  }
  EXPECT_EQ(most, 1);
}

TEST_P(RecursiveLockTest, ReleaseWhileLetsOthersInHoweverOftenItWasTaken) {
  const std::lock_guard outer(lock_);
  const std::lock_guard inner(lock_);
  bool entered = false;
  lock_.releaseWhile([&] {
    const auto visitor = runtime_->startThread("visitor", [&] {
      const std::lock_guard guard(lock_);
      entered = true;
    });
    visitor->join();
  });
  EXPECT_TRUE(entered);
}

TEST_P(RecursiveLockTest, ReleaseWhileTakesItBackAsOften) {
  int value = 0;
  lock_.lock();
  lock_.lock();
  lock_.releaseWhile([] {});
  const auto visitor = runtime_->startThread("visitor", [&] {
    const std::lock_guard guard(lock_);
    value = 1;
  });
  lock_.unlock();
  clock_.sleepFor(1us);
  EXPECT_EQ(value, 0);
  lock_.unlock();
  visitor->join();
  EXPECT_EQ(value, 1);
}

TEST_P(RecursiveLockTest, CanBeTakenInTheCallOfReleaseWhile) {
  const std::lock_guard outer(lock_);
  int calls = 0;
  lock_.releaseWhile([&] {
    const std::lock_guard again(lock_);
    lock_.releaseWhile([&] { ++calls; });
    ++calls;
  });
  EXPECT_EQ(calls, 2);
}

}  // namespace
}  // namespace zq::platform
