#pragma once
// What a view hands to the main thread, which may run it after the view is gone.

#include <functional>
#include <memory>
#include <utility>

#include "platform/executor.h"

namespace zq {

/// Made and destroyed on the main thread, used from any thread.
class MainThreadTasks {
 public:
  explicit MainThreadTasks(platform::Executor& executor) : executor_(executor) {}

  /// Runs `task` on the main thread without waiting for it; not when this object is gone by then.
  void post(std::function<void()> task) const {
    executor_.post([alive = std::weak_ptr(alive_), task = std::move(task)] {
      if (!alive.expired()) task();
    });
  }

 private:
  platform::Executor& executor_;
  const std::shared_ptr<int> alive_ = std::make_shared<int>();
};

}  // namespace zq
