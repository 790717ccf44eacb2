#pragma once
// A timer as the loop that it belongs to holds it.

#include <functional>
#include <utility>

#include "platform/executor.h"

namespace zq::platform {

/// Knows nothing of the loop, so that a handle may outlive it; the loop passes over a timer that is no longer valid.
/// Main thread only, once the loop has it.
class OneShotTimer final : public Timer {
 public:
  explicit OneShotTimer(std::function<void()> fire) : fire_(std::move(fire)) {}

  // Taken out first: what goes with the function may ask for this timer again.
  void invalidate() override { const std::function<void()> dropped = std::exchange(fire_, nullptr); }
  bool isValid() const override { return fire_ != nullptr; }

  void fire() {
    if (const std::function<void()> call = std::exchange(fire_, nullptr)) call();
  }

 private:
  // Empty when not valid.
  std::function<void()> fire_;
};

}  // namespace zq::platform
