#include "platform/condition_lock.h"

#include <mutex>

#include "platform/runtime.h"

namespace zq::platform {

ConditionLock::ConditionLock(Runtime& runtime, const char* name, int condition)
    : mutex_(runtime.makeMutex(name)), changed_(runtime.makeCondition(name)), condition_(condition) {}

ConditionLock::~ConditionLock() = default;

void ConditionLock::lock() {
  const std::lock_guard guard(*mutex_);
  while (held_) changed_->wait(*mutex_);
  held_ = true;
}

void ConditionLock::unlock() {
  const std::lock_guard guard(*mutex_);
  held_ = false;
  changed_->notifyAll();
}

void ConditionLock::lockWhenCondition(int condition) {
  const std::lock_guard guard(*mutex_);
  while (held_ || condition_ != condition) changed_->wait(*mutex_);
  held_ = true;
}

bool ConditionLock::lockWhenConditionBefore(int condition, TimePoint deadline) {
  const std::lock_guard guard(*mutex_);
  while (held_ || condition_ != condition) {
    if (!changed_->waitUntil(*mutex_, deadline) && (held_ || condition_ != condition)) return false;
  }
  held_ = true;
  return true;
}

void ConditionLock::unlockWithCondition(int condition) {
  const std::lock_guard guard(*mutex_);
  condition_ = condition;
  held_ = false;
  changed_->notifyAll();
}

int ConditionLock::condition() const {
  const std::lock_guard guard(*mutex_);
  return condition_;
}

}  // namespace zq::platform
