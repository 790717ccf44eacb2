// How virtual time comes to a stop: what is reported, and how everything is taken down afterwards.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "backends/time/virtual_runtime.h"
#include "platform/recursive_lock.h"

namespace zq::backend {
namespace {

using namespace std::chrono_literals;
using platform::TimePoint;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

/// Does what it is told when it goes, as members of a class that is destroyed do.
class AtExit {
 public:
  explicit AtExit(std::function<void()> act) : act_(std::move(act)) {}
  ~AtExit() { act_(); }
  AtExit(const AtExit&) = delete;
  AtExit& operator=(const AtExit&) = delete;

 private:
  const std::function<void()> act_;
};

class VirtualStop : public testing::Test {
 protected:
  void rebuild(VirtualOptions options) {
    runtime_.emplace(std::move(options));
    mutex_ = runtime_->makeMutex("frames");
    condition_ = runtime_->makeCondition("frame arrived");
  }
  void SetUp() override { rebuild({}); }

  template <typename Call>
  static std::string reportOf(Call call) {
    try {
      call();
    } catch (const StuckError& error) {
      return error.what();
    }
    return "";
  }

  void waitForEver() {
    const std::lock_guard guard(*mutex_);
    for (;;) condition_->wait(*mutex_);
  }
  void sleepFor(platform::Duration duration) { runtime_->clock().sleepFor(duration); }
  void runLoop() { runtime_->mainLoop().run(); }

  std::optional<VirtualRuntime> runtime_;
  std::unique_ptr<platform::Mutex> mutex_;
  std::unique_ptr<platform::Condition> condition_;
};

TEST_F(VirtualStop, ReportsBothThreadsAndBothMutexesOfADeadlock) {
  const auto first = runtime_->makeMutex("m1");
  const auto second = runtime_->makeMutex("m2");
  const auto lockBoth = [this](platform::Mutex& mine, platform::Mutex& others) {
    const std::lock_guard outer(mine);
    sleepFor(1500ms);
    const std::lock_guard inner(others);
  };
  const auto a = runtime_->startThread("A", [&] { lockBoth(*first, *second); });
  const auto b = runtime_->startThread("B", [&] { lockBoth(*second, *first); });
  const std::string report = reportOf([&] { a->join(); });
  EXPECT_THAT(report, StartsWith("Deadlock at 1.500000000 s, seed 0"));
  EXPECT_THAT(report, HasSubstr("'main' waits for the end of thread 'A'"));
  EXPECT_THAT(report, HasSubstr("'A' waits for mutex 'm2', held by 'B'"));
  EXPECT_THAT(report, HasSubstr("'B' waits for mutex 'm1', held by 'A'"));
}

TEST_F(VirtualStop, ReportsAConditionThatNobodySignals) {
  const auto thread = runtime_->startThread("writer", [this] { waitForEver(); });
  EXPECT_THAT(reportOf([&] { thread->join(); }), HasSubstr("'writer' waits for condition 'frame arrived'"));
}

TEST_F(VirtualStop, ReportsARunLoopWithNothingToDo) {
  EXPECT_THAT(reportOf([this] { runLoop(); }), HasSubstr("'main' waits for condition 'run loop'"));
}

TEST_F(VirtualStop, ReportsARunLoopWhoseTimersWereAllInvalidated) {
  runtime_->mainLoop().startTimer(1s, [] {})->invalidate();
  EXPECT_THAT(reportOf([this] { runLoop(); }), StartsWith("Deadlock at 0.000000000 s"));
}

TEST_F(VirtualStop, ReportsAMutexTakenTwiceByTheSameThread) {
  const auto thread = runtime_->startThread("writer", [this] {
    const std::lock_guard outer(*mutex_);
    const std::lock_guard inner(*mutex_);
  });
  EXPECT_THAT(reportOf([&] { thread->join(); }), HasSubstr("'writer' waits for mutex 'frames', held by 'writer'"));
}

TEST_F(VirtualStop, ReportsAMutexWhoseHolderHasEnded) {
  const auto thread = runtime_->startThread("writer", [this] { mutex_->lock(); });
  thread->join();
  EXPECT_THAT(reportOf([this] { mutex_->lock(); }), HasSubstr("mutex 'frames', held by 'writer', which has ended"));
}

TEST_F(VirtualStop, ADeadlockFoundByAThreadThatEndsIsThrownOnTheMainThread) {
  const auto thread = runtime_->startThread("writer", [] {});
  EXPECT_THAT(reportOf([this] { waitForEver(); }), StartsWith("Deadlock"));
}

TEST_F(VirtualStop, TheBoundOnStepsStopsALoopThatLetsTimePass) {
  VirtualOptions options;
  options.maxSteps = 1000;
  options.seed = 7;
  rebuild(options);
  const auto thread = runtime_->startThread("poller", [this] {
    for (;;) sleepFor(1s);
  });
  const std::string report = reportOf([&] { thread->join(); });
  EXPECT_THAT(report,
              AllOf(StartsWith("More than 1000 steps at "), HasSubstr("seed 7"), HasSubstr("'poller' sleeps until")));
  EXPECT_EQ(runtime_->steps(), 1000U);
}

TEST_F(VirtualStop, TheBoundOnStepsAtOneInstantStopsALoopThatWaitsForNothing) {
  VirtualOptions options;
  options.maxStepsAtOneInstant = 100;
  rebuild(options);
  sleepFor(1s);
  const auto thread = runtime_->startThread("poller", [this] {
    for (;;) sleepFor(0s);
  });
  const std::string report = reportOf([&] { thread->join(); });
  EXPECT_THAT(report, AllOf(StartsWith("More than 100 steps with no time passing at 1.000000000 s"),
                            HasSubstr("'poller' is ready to run")));
}

TEST_F(VirtualStop, TheMainThreadIsBoundToo) {
  VirtualOptions options;
  options.maxStepsAtOneInstant = 100;
  rebuild(options);
  std::function<void()> again = [&] { runtime_->mainLoop().startTimer(1ns, again); };
  again();
  runtime_->mainLoop().startTimer(1us, [this] { runtime_->mainLoop().quit(); });
  runLoop();
  EXPECT_THAT(reportOf([this] {
                for (;;) sleepFor(0s);
              }),
              StartsWith("More than 100 steps"));
}

TEST_F(VirtualStop, TimeThatPassesStartsTheCountOfTheInstantAgain) {
  VirtualOptions options;
  options.maxStepsAtOneInstant = 10;
  rebuild(options);
  for (int i = 0; i < 1000; ++i) sleepFor(i % 5 == 0 ? 1s : 0s);
  EXPECT_EQ(runtime_->clock().now(), TimePoint(200s));
}

TEST_F(VirtualStop, AllOtherThreadsAreUnwoundBeforeTheMainThreadGoesOn) {
  std::vector<std::string> gone;
  std::vector<std::unique_ptr<platform::Thread>> threads;
  for (int i = 0; i < 5; ++i) {
    threads.push_back(runtime_->startThread("writer", [&] {
      const AtExit exit([&] { gone.push_back("writer"); });
      waitForEver();
    }));
  }
  reportOf([&] {
    const AtExit exit([&] { gone.push_back("main"); });
    runLoop();
  });
  EXPECT_THAT(gone, ElementsAre("writer", "writer", "writer", "writer", "writer", "main"));
}

TEST_F(VirtualStop, WhatOwnsAThreadSeesItUnwoundFirst) {
  std::vector<std::string> gone;
  const auto outer = runtime_->startThread("outer", [&] {
    const AtExit exit([&] { gone.push_back("outer"); });
    const auto inner = runtime_->startThread("inner", [&] {
      const AtExit innerExit([&] { gone.push_back("inner"); });
      waitForEver();
    });
    waitForEver();
  });
  reportOf([this] { runLoop(); });
  EXPECT_THAT(gone, ElementsAre("inner", "outer"));
}

TEST_F(VirtualStop, CallsThatBlockReturnAtOnceWhileAThreadIsUnwound) {
  const std::unique_lock held(*mutex_);
  bool finished = false;
  const auto thread = runtime_->startThread("writer", [&] {
    const AtExit exit([&] {
      const auto late = runtime_->startThread("late", [] { ADD_FAILURE() << "ran after the stop"; });
      late->join();
      sleepFor(1h);
      {
        const std::lock_guard guard(*mutex_);
        condition_->wait(*mutex_);
        EXPECT_FALSE(condition_->waitUntil(*mutex_, TimePoint(1h)));
      }
      runtime_->mainLoop().post([] {});
      finished = true;
    });
    const auto other = runtime_->makeMutex("other");
    const std::lock_guard guard(*other);
    for (;;) condition_->wait(*other);
  });
  reportOf([this] { runLoop(); });
  EXPECT_TRUE(finished);
}

TEST_F(VirtualStop, AThreadThatCatchesEverythingIsUnwoundAgain) {
  int caught = 0;
  const auto thread = runtime_->startThread("writer", [&] {
    for (int i = 0; i < 3; ++i) {
      try {
        sleepFor(1h);
        waitForEver();
      } catch (...) {
        ++caught;
      }
    }
  });
  reportOf([this] { runLoop(); });
  EXPECT_EQ(caught, 3);
}

TEST_F(VirtualStop, AHandlerOfErrorsDoesNotSeeAThreadUnwound) {
  bool caught = false;
  const auto thread = runtime_->startThread("writer", [&] {
    try {
      waitForEver();
    } catch (const std::exception&) {
      caught = true;
    }
  });
  reportOf([this] { runLoop(); });
  EXPECT_FALSE(caught);
}

TEST_F(VirtualStop, AThreadThatHasNotBegunNeverRuns) {
  VirtualOptions options;
  options.maxSteps = 1;
  rebuild(options);
  int ran = 0;
  const auto held = std::make_shared<int>(0);
  const auto first = runtime_->startThread("first", [&ran, held] { ++ran; });
  const auto second = runtime_->startThread("second", [&ran, held] { ++ran; });
  reportOf([this] { runLoop(); });
  EXPECT_LE(ran, 1);
  EXPECT_EQ(held.use_count(), 1);
}

TEST_F(VirtualStop, ADestructorThatJoinsDoesNotThrowAndTheNextBlockingCallDoes) {
  {
    const auto thread = runtime_->startThread("writer", [this] { waitForEver(); });
  }
  EXPECT_THAT(reportOf([this] { sleepFor(1s); }), HasSubstr("'main' waits for the end of thread 'writer'"));
}

TEST_F(VirtualStop, AStopThatNobodyWasToldOfIsPrinted) {
  testing::internal::CaptureStderr();
  {
    const auto thread = runtime_->startThread("writer", [this] { waitForEver(); });
  }
  runtime_.reset();
  EXPECT_THAT(testing::internal::GetCapturedStderr(), HasSubstr("'writer' waits for condition"));
}

TEST_F(VirtualStop, TellsOnceOnTheMainThreadBeforeAnythingIsUnwound) {
  std::vector<std::string> told;
  bool unwound = false;
  VirtualOptions options;
  options.onStuck = [&](const std::string& report) {
    EXPECT_TRUE(runtime_->mainLoop().isCurrent());
    EXPECT_FALSE(unwound);
    told.push_back(report);
  };
  rebuild(options);
  const auto thread = runtime_->startThread("writer", [&] {
    const AtExit exit([&] { unwound = true; });
    waitForEver();
  });
  const std::string report = reportOf([this] { runLoop(); });
  EXPECT_TRUE(unwound);
  EXPECT_THAT(told, ElementsAre(report));
  EXPECT_EQ(reportOf([this] { runLoop(); }), report);
  runtime_.reset();
  EXPECT_EQ(told.size(), 1U);
}

TEST_F(VirtualStop, MutexesLockNobodyOutAfterIt) {
  const auto thread = runtime_->startThread("writer", [this] { mutex_->lock(); });
  platform::RecursiveLock recursive(*runtime_, "controller");
  thread->join();
  reportOf([&] {
    const std::lock_guard guard(recursive);
    recursive.releaseWhile([this] { runLoop(); });
  });
  const std::lock_guard guard(*mutex_);
  const std::lock_guard again(recursive);
}

TEST_F(VirtualStop, ARuntimeThatCameToAStopCanBeDestroyed) {
  {
    const auto thread = runtime_->startThread("writer", [this] { waitForEver(); });
    EXPECT_NE(reportOf([this] { runLoop(); }), "");
  }
  runtime_.reset();
}

TEST_F(VirtualStop, DestroyingTheRuntimeUnwindsThreadsThatAreLeft) {
  bool unwound = false;
  const auto waiting = runtime_->startThread("writer", [&] {
    const AtExit exit([&] {
      unwound = true;
      runtime_->mainLoop().post([] {});
    });
    waitForEver();
  });
  sleepFor(1s);
  const auto notBegun = runtime_->startThread("late", [] { ADD_FAILURE() << "ran in the destructor"; });
  runtime_.reset();
  EXPECT_TRUE(unwound);
}

using VirtualStopDeathTest = VirtualStop;

TEST_F(VirtualStopDeathTest, ADestructorThatWaitsInALoopForWhatCannotComeEndsTheProgramWithTheReport) {
  testing::GTEST_FLAG(death_test_style) = "threadsafe";
  const auto hang = [this] {
    const AtExit exit([this] { waitForEver(); });
    runLoop();
  };
  EXPECT_DEATH(hang(), "'main' waits for condition 'run loop'");
}

}  // namespace
}  // namespace zq::backend
