#pragma once
// The watchdog that fires when no frame has restarted it for its time.

#include <cstdint>
#include <functional>
#include <memory>

#include "platform/executor.h"

namespace zq {

/// Guarded by its owner's lock; the timer itself lives on the main thread.
class EndOfTapeTimer {
 public:
  explicit EndOfTapeTimer(platform::Executor& mainThread) : mainThread_(mainThread) {}

  /// Starts anew, in place of the one that runs. `fired` is called on the main thread with the number of the start,
  /// unless cancelled.
  void restart(platform::Duration delay, std::function<void(std::uint64_t)> fired);
  void cancel();
  /// Whether the start of this number still counts; asked by what has fired, under the owner's lock.
  bool isCurrent(std::uint64_t start) const { return start == start_; }
  bool isRunning() const { return timer_ != nullptr; }
  void clear() { timer_.reset(); }

 private:
  // Constant after construction.
  platform::Executor& mainThread_;

  std::shared_ptr<platform::Timer> timer_;
  std::uint64_t start_ = 0;
};

}  // namespace zq
