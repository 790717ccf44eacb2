#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <mutex>
#include <thread>

#include "backends/time/every_runtime.h"

namespace zq::backend {
namespace {

using namespace std::chrono_literals;

class RuntimeContract : public EveryRuntime {
 protected:
  const std::unique_ptr<platform::Mutex> mutex_ = runtime_->makeMutex("mutex");
  const std::unique_ptr<platform::Condition> changed_ = runtime_->makeCondition("changed");
};

INSTANTIATE_TEST_SUITE_P(Runtimes, RuntimeContract, kEveryRuntime, nameOf);

TEST_P(RuntimeContract, TheClockNeverGoesBack) {
  const platform::TimePoint before = clock_.now();
  clock_.sleepFor(0ns);
  EXPECT_GE(clock_.now(), before);
}

TEST_P(RuntimeContract, ASleepTakesAtLeastItsTime) {
  const platform::TimePoint before = clock_.now();
  clock_.sleepFor(1ms);
  EXPECT_GE(clock_.now() - before, 1ms);
}

TEST_P(RuntimeContract, ASleepOfLessThanNothingTakesNoTime) {
  clock_.sleepFor(-1h);
  clock_.sleepFor(platform::Duration::min());
}

TEST_P(RuntimeContract, AThreadRunsItsFunctionOnceOnAThreadOfItsOwn) {
  int runs = 0;
  std::thread::id id;
  const auto thread = runtime_->startThread("a name longer than what a system shows", [&] {
    ++runs;
    id = std::this_thread::get_id();
  });
  thread->join();
  EXPECT_EQ(runs, 1);
  EXPECT_NE(id, std::this_thread::get_id());
}

TEST_P(RuntimeContract, JoiningTwiceIsAllowed) {
  const auto thread = runtime_->startThread("thread", [] {});
  thread->join();
  thread->join();
}

TEST_P(RuntimeContract, DestroyingAThreadJoinsIt) {
  bool finished = false;
  {
    const auto thread = runtime_->startThread("thread", [&] {
      clock_.sleepFor(1us);
      finished = true;
    });
  }
  EXPECT_TRUE(finished);
}

TEST_P(RuntimeContract, WhatAThreadsFunctionHoldsIsGoneWhenItIsJoined) {
  const auto held = std::make_shared<int>(0);
  const auto thread = runtime_->startThread("thread", [held] {});
  thread->join();
  EXPECT_EQ(held.use_count(), 1);
}

TEST_P(RuntimeContract, AThreadMayStartAndJoinAnother) {
  bool finished = false;
  const auto outer = runtime_->startThread("outer", [&] {
    const auto inner = runtime_->startThread("inner", [&] { finished = true; });
    inner->join();
    EXPECT_TRUE(finished);
  });
  outer->join();
  EXPECT_TRUE(finished);
}

TEST_P(RuntimeContract, AMutexExcludes) {
  int inside = 0;
  int most = 0;
  int passes = 0;
  const auto pass = [&] {
    for (int i = 0; i < 200; ++i) {
      const std::lock_guard guard(*mutex_);
      most = std::max(most, ++inside);
      if (i % 50 == 0) clock_.sleepFor(1us);
      ++passes;
      --inside;
    }
  };
  {
    const auto first = runtime_->startThread("first", pass);
    const auto second = runtime_->startThread("second", pass);
    const auto third = runtime_->startThread("third", pass);
  }
  EXPECT_EQ(most, 1);
  EXPECT_EQ(passes, 600);
}

TEST_P(RuntimeContract, AWaitEndsWhenAnotherThreadNotifies) {
  bool ready = false;
  const auto notifier = runtime_->startThread("notifier", [&] {
    const std::lock_guard guard(*mutex_);
    ready = true;
    changed_->notifyAll();
  });
  const std::lock_guard guard(*mutex_);
  while (!ready) changed_->wait(*mutex_);
}

TEST_P(RuntimeContract, ANotificationWakesEveryWaiter) {
  int waiting = 0;
  bool go = false;
  const auto wait = [&] {
    const std::lock_guard guard(*mutex_);
    ++waiting;
    changed_->notifyAll();
    while (!go) changed_->wait(*mutex_);
  };
  const auto first = runtime_->startThread("first", wait);
  const auto second = runtime_->startThread("second", wait);
  const auto third = runtime_->startThread("third", wait);
  const std::lock_guard guard(*mutex_);
  while (waiting < 3) changed_->wait(*mutex_);
  go = true;
  changed_->notifyAll();
}

TEST_P(RuntimeContract, AWaiterHoldsTheMutexWhenItGoesOn) {
  bool ready = false;
  bool left = false;
  const auto notifier = runtime_->startThread("notifier", [&] {
    const std::lock_guard guard(*mutex_);
    ready = true;
    changed_->notifyAll();
    clock_.sleepFor(1us);
    left = true;
  });
  const std::lock_guard guard(*mutex_);
  while (!ready) changed_->wait(*mutex_);
  EXPECT_TRUE(left);
}

TEST_P(RuntimeContract, AWaitWithADeadlineInThePastReturnsFalseWithTheMutexHeld) {
  std::unique_lock guard(*mutex_);
  EXPECT_FALSE(changed_->waitUntil(*mutex_, clock_.now()));
  EXPECT_FALSE(changed_->waitUntil(*mutex_, clock_.now() - 1s));
  EXPECT_FALSE(changed_->waitUntil(*mutex_, platform::TimePoint::min()));
  guard.unlock();
}

TEST_P(RuntimeContract, AWaitWithADeadlineReturnsFalseWhenItIsReached) {
  const platform::TimePoint deadline = clock_.now() + 1ms;
  const std::lock_guard guard(*mutex_);
  while (changed_->waitUntil(*mutex_, deadline)) {
  }
  EXPECT_GE(clock_.now(), deadline);
}

TEST_P(RuntimeContract, AWaitWithADeadlineFarAwayEndsWhenAnotherThreadNotifies) {
  for (const platform::TimePoint deadline : {clock_.now() + 24h, platform::TimePoint::max()}) {
    bool ready = false;
    const auto notifier = runtime_->startThread("notifier", [&] {
      const std::lock_guard guard(*mutex_);
      ready = true;
      changed_->notifyAll();
    });
    const std::lock_guard guard(*mutex_);
    while (!ready) EXPECT_TRUE(changed_->waitUntil(*mutex_, deadline));
  }
}

TEST_P(RuntimeContract, ANotificationThatNobodyWaitsForIsNotKept) {
  const std::lock_guard guard(*mutex_);
  changed_->notifyAll();
  EXPECT_FALSE(changed_->waitUntil(*mutex_, clock_.now() + 1us));
}

}  // namespace
}  // namespace zq::backend
