#include "backends/time/run_loop.h"

#include <cassert>
#include <mutex>
#include <utility>

#include "backends/time/deadline.h"
#include "platform/runtime.h"

namespace zq::backend {

RunLoop::RunLoop(platform::Runtime& runtime)
    : clock_(runtime.clock()), mutex_(runtime.makeMutex("run loop")), changed_(runtime.makeCondition("run loop")) {}

RunLoop::~RunLoop() {
  // Again until nothing is left: what goes with a task may post another. Nothing is dropped under the lock.
  for (;;) {
    decltype(tasks_) tasks;
    decltype(timers_) timers;
    {
      const std::lock_guard guard(*mutex_);
      tasks.swap(tasks_);
      timers.swap(timers_);
    }
    if (tasks.empty() && timers.empty()) return;
    for (const auto& [deadline, timer] : timers) timer->invalidate();
  }
}

void RunLoop::post(std::function<void()> task) {
  const std::lock_guard guard(*mutex_);
  tasks_.push_back(std::move(task));
  changed_->notifyAll();
}

std::shared_ptr<platform::Timer> RunLoop::startTimer(platform::Duration delay, std::function<void()> fire) {
  auto timer = std::make_shared<platform::OneShotTimer>(std::move(fire));
  const std::lock_guard guard(*mutex_);
  // A multimap keeps equal keys in the order in which they came.
  timers_.emplace(deadlineAfter(clock_.now(), delay), timer);
  changed_->notifyAll();
  return timer;
}

void RunLoop::run() {
  assert(isCurrent());
  while (const std::optional<std::function<void()>> task = waitForTask()) (*task)();
}

void RunLoop::quit() {
  const std::lock_guard guard(*mutex_);
  quit_ = true;
  changed_->notifyAll();
}

std::optional<std::function<void()>> RunLoop::waitForTask() {
  const std::lock_guard guard(*mutex_);
  for (;;) {
    if (std::exchange(quit_, false)) return std::nullopt;
    queueDueTimers();
    if (!tasks_.empty()) {
      std::function<void()> task = std::move(tasks_.front());
      tasks_.pop_front();
      return task;
    }
    if (timers_.empty()) {
      changed_->wait(*mutex_);
    } else {
      changed_->waitUntil(*mutex_, timers_.begin()->first);
    }
  }
}

// Due timers queue behind the tasks instead of going first, so that neither a timer that starts itself again with no
// delay nor a task that posts itself again keeps the others from running. A timer that is no longer valid goes as soon
// as it is the first, so that the loop never waits, and virtual time never passes, for nothing.
void RunLoop::queueDueTimers() {
  const platform::TimePoint now = clock_.now();
  while (!timers_.empty()) {
    const auto first = timers_.begin();
    const bool valid = first->second->isValid();
    if (valid && first->first > now) return;
    if (valid) tasks_.push_back([timer = first->second] { timer->fire(); });
    timers_.erase(first);
  }
}

}  // namespace zq::backend
