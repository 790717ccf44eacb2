#pragma once
// The time that everything runs by, and the one way to let some of it pass.

#include <chrono>

namespace zq::platform {

using Duration = std::chrono::nanoseconds;
using TimePoint = std::chrono::time_point<std::chrono::steady_clock, Duration>;

class Clock {
 public:
  virtual ~Clock() = default;
  /// Monotonic; unrelated to the time of day.
  virtual TimePoint now() const = 0;
  /// Blocks the calling thread for this long.
  virtual void sleepFor(Duration duration) = 0;
};

}  // namespace zq::platform
