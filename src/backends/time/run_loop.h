#pragma once
// The main thread's run loop, made of a runtime's own mutex, condition and clock.

#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <thread>

#include "platform/executor.h"
#include "platform/one_shot_timer.h"
#include "platform/thread.h"

namespace zq::platform {
class Runtime;
}

namespace zq::backend {

/// Tasks run in the order in which they were posted. Timers that are due join them in the order of their deadlines,
/// those with the same deadline in the order in which they were started. Destroying the loop drops what has not run.
class RunLoop final : public platform::MainLoop {
 public:
  /// The calling thread is the main thread.
  explicit RunLoop(platform::Runtime& runtime);
  ~RunLoop() override;
  RunLoop(const RunLoop&) = delete;
  RunLoop& operator=(const RunLoop&) = delete;

  void post(std::function<void()> task) override;
  bool isCurrent() const override { return std::this_thread::get_id() == mainThread_; }
  std::shared_ptr<platform::Timer> startTimer(platform::Duration delay, std::function<void()> fire) override;
  /// What is left when it returns stays for the next run.
  void run() override;
  /// Before run(): the next run returns at once.
  void quit() override;

 private:
  std::optional<std::function<void()>> waitForTask();
  void queueDueTimers();

  // Constant after construction.
  const std::thread::id mainThread_ = std::this_thread::get_id();
  platform::Clock& clock_;
  const std::unique_ptr<platform::Mutex> mutex_;
  const std::unique_ptr<platform::Condition> changed_;

  // Guarded by mutex_.
  std::deque<std::function<void()>> tasks_;
  std::multimap<platform::TimePoint, std::shared_ptr<platform::OneShotTimer>> timers_;
  bool quit_ = false;
};

}  // namespace zq::backend
