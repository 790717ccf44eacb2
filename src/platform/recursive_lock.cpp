#include "platform/recursive_lock.h"

#include "platform/runtime.h"

namespace zq::platform {

RecursiveLock::RecursiveLock(Runtime& runtime, const char* name) : mutex_(runtime.makeMutex(name)) {}

RecursiveLock::~RecursiveLock() = default;

void RecursiveLock::lock() {
  if (!heldByThisThread()) {
    mutex_->lock();
    owner_ = std::this_thread::get_id();
  }
  ++depth_;
}

void RecursiveLock::unlock() {
  if (--depth_ > 0) return;
  owner_ = std::thread::id();
  mutex_->unlock();
}

void RecursiveLock::releaseWhile(const std::function<void()>& call) {
  // Takes the lock back also when the call throws: whoever holds it expects to.
  struct Retake {
    RecursiveLock& lock;
    const int depth;
    ~Retake() {
      lock.mutex_->lock();
      lock.owner_ = std::this_thread::get_id();
      lock.depth_ = depth;
    }
  };
  const Retake retake{*this, depth_};
  depth_ = 0;
  owner_ = std::thread::id();
  mutex_->unlock();
  call();
}

}  // namespace zq::platform
