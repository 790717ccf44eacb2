#pragma once
// The main thread's run loop: work handed to it from any thread, and its timers.

#include <functional>
#include <memory>

#include "platform/clock.h"

namespace zq::platform {

/// A one-shot timer of the run loop, on the main thread only.
class Timer {
 public:
  virtual ~Timer() = default;
  /// Never fires after this.
  virtual void invalidate() = 0;
  virtual bool isValid() const = 0;
};

class Executor {
 public:
  virtual ~Executor() = default;
  /// From any thread: runs `task` on the main thread, after what was posted before, without waiting for it.
  virtual void post(std::function<void()> task) = 0;
  /// Whether the calling thread is the main thread.
  virtual bool isCurrent() const = 0;
  /// From any thread: calls `fire` on the main thread once `delay` has passed. The loop keeps the timer alive.
  virtual std::shared_ptr<Timer> startTimer(Duration delay, std::function<void()> fire) = 0;
};

/// An executor whose loop is run by the program itself.
class MainLoop : public Executor {
 public:
  /// On the main thread: runs tasks and timers until quit().
  virtual void run() = 0;
  /// From any thread: run() returns after the task that is running.
  virtual void quit() = 0;
};

}  // namespace zq::platform
