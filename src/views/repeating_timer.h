#pragma once
// A timer that fires again and again.

#include <functional>
#include <memory>
#include <utility>

#include "platform/executor.h"

namespace zq {

/// Main thread only. `fire` may invalidate or destroy the timer that calls it.
class RepeatingTimer {
 public:
  /// Fires every `interval`, for the first time one interval from now.
  RepeatingTimer(platform::Executor& executor, platform::Duration interval, std::function<void()> fire)
      : ticks_(std::make_shared<Ticks>(Ticks{executor, interval, std::move(fire), nullptr})) {
    arm(ticks_);
  }
  ~RepeatingTimer() { invalidate(); }
  RepeatingTimer(const RepeatingTimer&) = delete;
  RepeatingTimer& operator=(const RepeatingTimer&) = delete;

  /// Never fires after this.
  void invalidate() {
    if (const auto next = std::exchange(ticks_->next, nullptr)) next->invalidate();
  }
  bool isValid() const { return ticks_->next != nullptr; }

 private:
  // Outlives the timer for as long as a tick that destroyed it is on its way back.
  struct Ticks {
    platform::Executor& executor;
    platform::Duration interval;
    std::function<void()> fire;
    /// Null when not valid.
    std::shared_ptr<platform::Timer> next;
  };

  // Armed before it fires, so that a timer is valid in its own tick.
  static void arm(const std::shared_ptr<Ticks>& ticks) {
    ticks->next = ticks->executor.startTimer(ticks->interval, [ticks] {
      arm(ticks);
      ticks->fire();
    });
  }

  const std::shared_ptr<Ticks> ticks_;
};

}  // namespace zq
