#pragma once
// Threads and what guards the state that they share.

#include "platform/clock.h"

namespace zq::platform {

/// A running thread. Destroying it joins it.
class Thread {
 public:
  virtual ~Thread() = default;
  /// Waits for the thread's function to return; once is enough.
  virtual void join() = 0;
};

/// Not recursive. Meets BasicLockable, for std::lock_guard and std::unique_lock.
class Mutex {
 public:
  virtual ~Mutex() = default;
  virtual void lock() = 0;
  virtual void unlock() = 0;
};

/// Waiting for a state that a mutex guards to change. May wake without cause, so callers wait in a loop.
class Condition {
 public:
  virtual ~Condition() = default;
  /// `mutex` is held by the caller, given up while waiting, and held again on return.
  virtual void wait(Mutex& mutex) = 0;
  /// As wait(); false when `deadline` passed first.
  virtual bool waitUntil(Mutex& mutex, TimePoint deadline) = 0;
  virtual void notifyAll() = 0;
};

}  // namespace zq::platform
