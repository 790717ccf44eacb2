#pragma once
// A lock that its owner may take again, and may give up whole for the time of one call.

#include <atomic>
#include <functional>
#include <memory>
#include <thread>

#include "platform/thread.h"

namespace zq::platform {

class Runtime;

/// For a controller whose operations call delegates that call the controller again.
class RecursiveLock {
 public:
  RecursiveLock(Runtime& runtime, const char* name);
  ~RecursiveLock();

  void lock();
  void unlock();
  /// Only while held: gives the lock up however often it was taken, runs `call`, and takes it again as often.
  void releaseWhile(const std::function<void()>& call);

 private:
  bool heldByThisThread() const { return owner_.load() == std::this_thread::get_id(); }

  // Constant after construction.
  const std::unique_ptr<Mutex> mutex_;

  // Written by the owner of mutex_ only; other threads learn from owner_ just that they are not it.
  std::atomic<std::thread::id> owner_{};
  int depth_ = 0;
};

}  // namespace zq::platform
