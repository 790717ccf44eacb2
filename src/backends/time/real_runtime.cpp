#include "backends/time/real_runtime.h"

#include <pthread.h>

#include <cassert>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <utility>

namespace zq::backend {
namespace {

class RealClock final : public platform::Clock {
 public:
  platform::TimePoint now() const override { return std::chrono::steady_clock::now(); }
  void sleepFor(platform::Duration duration) override { std::this_thread::sleep_for(duration); }
};

class RealMutex final : public platform::Mutex {
 public:
  void lock() override { mutex_.lock(); }
  void unlock() override { mutex_.unlock(); }
  std::mutex& native() { return mutex_; }

 private:
  std::mutex mutex_;
};

/// The caller's hold on a mutex in the form that a std::condition_variable takes; it stays the caller's.
class BorrowedLock {
 public:
  explicit BorrowedLock(platform::Mutex& mutex) : lock_(nativeOf(mutex), std::adopt_lock) {}
  ~BorrowedLock() { lock_.release(); }
  BorrowedLock(const BorrowedLock&) = delete;
  BorrowedLock& operator=(const BorrowedLock&) = delete;

  std::unique_lock<std::mutex>& lock() { return lock_; }

 private:
  static std::mutex& nativeOf(platform::Mutex& mutex) {
    assert(dynamic_cast<RealMutex*>(&mutex) != nullptr);
    return static_cast<RealMutex&>(mutex).native();
  }

  std::unique_lock<std::mutex> lock_;
};

/// Not std::condition_variable_any, which would take any mutex, but lock a second one of its own in every call.
class RealCondition final : public platform::Condition {
 public:
  void wait(platform::Mutex& mutex) override {
    BorrowedLock borrowed(mutex);
    condition_.wait(borrowed.lock());
  }

  bool waitUntil(platform::Mutex& mutex, platform::TimePoint deadline) override {
    BorrowedLock borrowed(mutex);
    return condition_.wait_until(borrowed.lock(), deadline) == std::cv_status::no_timeout;
  }

  void notifyAll() override { condition_.notify_all(); }

 private:
  std::condition_variable condition_;
};

class RealThread final : public platform::Thread {
 public:
  RealThread(const std::string& name, std::function<void()> run)
      : thread_([shownName = name.substr(0, kShownNameLength), run = std::move(run)] {
          pthread_setname_np(pthread_self(), shownName.c_str());
          run();
        }) {}
  ~RealThread() override { RealThread::join(); }
  RealThread(const RealThread&) = delete;
  RealThread& operator=(const RealThread&) = delete;

  void join() override {
    if (thread_.joinable()) thread_.join();
  }

 private:
  /// pthread_setname_np refuses a longer name.
  static constexpr std::size_t kShownNameLength = 15;

  std::thread thread_;
};

}  // namespace

RealRuntime::RealRuntime() : clock_(std::make_unique<RealClock>()), mainLoop_(*this) {}

RealRuntime::~RealRuntime() = default;

std::unique_ptr<platform::Mutex> RealRuntime::makeMutex(const std::string& /*name*/) {
  return std::make_unique<RealMutex>();
}

std::unique_ptr<platform::Condition> RealRuntime::makeCondition(const std::string& /*name*/) {
  return std::make_unique<RealCondition>();
}

std::unique_ptr<platform::Thread> RealRuntime::startThread(const std::string& name, std::function<void()> run) {
  return std::make_unique<RealThread>(name, std::move(run));
}

}  // namespace zq::backend
