#include "platform/condition_lock.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "backends/time/every_runtime.h"

namespace zq::platform {
namespace {

using namespace std::chrono_literals;

class ConditionLockTest : public backend::EveryRuntime {
 protected:
  ConditionLock lock_{*runtime_, "lock", 0};
};

INSTANTIATE_TEST_SUITE_P(Runtimes, ConditionLockTest, backend::kEveryRuntime, backend::nameOf);

TEST_P(ConditionLockTest, BeginsFreeWithItsNumber) {
  EXPECT_EQ(lock_.condition(), 0);
  lock_.lock();
  lock_.unlock();
  EXPECT_EQ(lock_.condition(), 0);
}

TEST_P(ConditionLockTest, UnlockingCanChangeTheNumber) {
  lock_.lock();
  lock_.unlockWithCondition(7);
  EXPECT_EQ(lock_.condition(), 7);
  lock_.lockWhenCondition(7);
  lock_.unlock();
  EXPECT_EQ(lock_.condition(), 7);
}

TEST_P(ConditionLockTest, TheNumberCanBeReadWhileItIsHeld) {
  lock_.lock();
  EXPECT_EQ(lock_.condition(), 0);
  lock_.unlock();
}

TEST_P(ConditionLockTest, Excludes) {
  int inside = 0;
  int most = 0;
  const auto pass = [&] {
    for (int i = 0; i < 20; ++i) {
      lock_.lock();
      most = std::max(most, ++inside);
      clock_.sleepFor(1us);
      --inside;
      lock_.unlock();
    }
  };
  {
    const auto first = runtime_->startThread("first", pass);
    const auto second = runtime_->startThread("second", pass);
  }
  EXPECT_EQ(most, 1);
}

TEST_P(ConditionLockTest, TwoThreadsTakeTurnsByTheNumber) {
  std::vector<int> turns;
  const auto takeTurns = [&](int mine, int others) {
    for (int i = 0; i < 50; ++i) {
      lock_.lockWhenCondition(mine);
      turns.push_back(mine);
      lock_.unlockWithCondition(others);
    }
  };
  {
    const auto other = runtime_->startThread("other", [&] { takeTurns(1, 0); });
    takeTurns(0, 1);
  }
  ASSERT_EQ(turns.size(), 100U);
  for (std::size_t i = 0; i < turns.size(); ++i) EXPECT_EQ(turns[i], static_cast<int>(i % 2));
}

TEST_P(ConditionLockTest, WaitsForTheNumberToo) {
  bool changed = false;
  const auto changer = runtime_->startThread("changer", [&] {
    lock_.lock();
    lock_.unlockWithCondition(1);
    lock_.lockWhenCondition(1);
    changed = true;
    lock_.unlockWithCondition(2);
  });
  lock_.lockWhenCondition(2);
  EXPECT_TRUE(changed);
  lock_.unlock();
}

TEST_P(ConditionLockTest, TakenAtOnceEvenWhenTheDeadlineIsPast) {
  EXPECT_TRUE(lock_.lockWhenConditionBefore(0, clock_.now() - 1s));
  lock_.unlock();
}

TEST_P(ConditionLockTest, RefusedWhenTheDeadlinePassesFirst) {
  EXPECT_FALSE(lock_.lockWhenConditionBefore(1, clock_.now() - 1s));
  EXPECT_FALSE(lock_.lockWhenConditionBefore(1, clock_.now() + 1ms));
  lock_.lock();
  EXPECT_FALSE(lock_.lockWhenConditionBefore(0, clock_.now()));
  lock_.unlock();
}

TEST_P(ConditionLockTest, RefusalLeavesItFree) {
  EXPECT_FALSE(lock_.lockWhenConditionBefore(1, clock_.now()));
  lock_.lock();
  lock_.unlock();
}

TEST_P(ConditionLockTest, TakenBeforeADeadlineFarAway) {
  const auto changer = runtime_->startThread("changer", [&] {
    lock_.lock();
    lock_.unlockWithCondition(1);
  });
  EXPECT_TRUE(lock_.lockWhenConditionBefore(1, clock_.now() + 24h));
  lock_.unlock();
}

}  // namespace
}  // namespace zq::platform
