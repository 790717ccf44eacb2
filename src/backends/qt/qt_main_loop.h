#pragma once
// Qt's event loop as the main thread's run loop: windows, tasks and timers take turns in it.

#include <QObject>
#include <deque>
#include <functional>
#include <memory>

#include "platform/executor.h"
#include "platform/one_shot_timer.h"
#include "platform/thread.h"

namespace zq::platform {
class Clock;
class Runtime;
}  // namespace zq::platform

namespace zq::backend {

/// Tasks and timers run whenever Qt's loop runs, be it by run(), by the application's own exec() or in a dialog.
/// Needs a QCoreApplication. Destroying it, on the main thread, drops what has not run.
class QtMainLoop final : public platform::MainLoop {
 public:
  /// Takes its clock and its mutex from `system`. The calling thread is the main thread.
  explicit QtMainLoop(platform::Runtime& system);
  ~QtMainLoop() override;
  QtMainLoop(const QtMainLoop&) = delete;
  QtMainLoop& operator=(const QtMainLoop&) = delete;

  void post(std::function<void()> task) override;
  bool isCurrent() const override;
  std::shared_ptr<platform::Timer> startTimer(platform::Duration delay, std::function<void()> fire) override;
  void run() override;
  /// Before run(): the next run returns at once.
  void quit() override;

 private:
  void wakeForOneTask();
  void runOneTask();
  bool mustReturn();
  void arm(const std::shared_ptr<platform::OneShotTimer>& timer, platform::TimePoint deadline);
  void fireWhenDue(const std::shared_ptr<platform::OneShotTimer>& timer, platform::TimePoint deadline);

  // Constant after construction. What is posted to context_ is dropped with it.
  platform::Clock& clock_;
  const std::unique_ptr<platform::Mutex> mutex_;
  const std::unique_ptr<QObject> context_;

  // Main thread only: how many runs are within each other.
  int runs_ = 0;

  // Guarded by mutex_.
  std::deque<std::function<void()>> tasks_;
  bool quit_ = false;
};

}  // namespace zq::backend
