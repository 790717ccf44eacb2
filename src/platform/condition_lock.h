#pragma once
// A lock that carries a number, and can be taken when the number has a given value.

#include <memory>

#include "platform/thread.h"

namespace zq::platform {

class Runtime;

class ConditionLock {
 public:
  ConditionLock(Runtime& runtime, const char* name, int condition);
  ~ConditionLock();

  void lock();
  void unlock();
  /// Waits until the lock is free and its number is `condition`.
  void lockWhenCondition(int condition);
  /// As lockWhenCondition(); false, without the lock, when `deadline` passed first.
  bool lockWhenConditionBefore(int condition, TimePoint deadline);
  void unlockWithCondition(int condition);
  int condition() const;

 private:
  // Constant after construction.
  const std::unique_ptr<Mutex> mutex_;
  const std::unique_ptr<Condition> changed_;

  // Guarded by mutex_.
  bool held_ = false;
  int condition_;
};

}  // namespace zq::platform
