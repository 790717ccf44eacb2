#pragma once
// Time that passes only when every thread waits.

#include <cstdint>
#include <memory>
#include <string>

#include "backends/time/run_loop.h"
#include "backends/time/virtual_options.h"
#include "backends/time/virtual_scheduler.h"
#include "platform/runtime.h"

namespace zq::backend {

/// One thread runs at a time, and hands over only where it blocks; a thread that is started first runs when its starter
/// blocks. When all wait, time, which begins at 0, jumps to the next deadline. When there is none, or the options'
/// bounds are reached, the call that blocks the main thread throws a StuckError, after all other threads have been
/// unwound.
///
/// Only the threads that it made and its maker may call it and what it made; any other ends the program. That goes for
/// MainLoop::post() and quit() too, which a real runtime takes from every thread.
class VirtualRuntime final : public platform::Runtime {
 public:
  using Options = VirtualOptions;

  /// The calling thread is the main thread.
  explicit VirtualRuntime(Options options = {});
  /// Unwinds the threads that have not finished.
  ~VirtualRuntime() override;

  platform::Clock& clock() override { return *clock_; }
  platform::MainLoop& mainLoop() override { return mainLoop_; }
  std::unique_ptr<platform::Mutex> makeMutex(const std::string& name) override;
  std::unique_ptr<platform::Condition> makeCondition(const std::string& name) override;
  std::unique_ptr<platform::Thread> startThread(const std::string& name, std::function<void()> run) override;
  /// Beside the others only when the options say so.
  void runAside(const std::function<void()>& work) override { scheduler_.runAside(work); }

  void waitForWorkAside(platform::Condition& condition, platform::Mutex& mutex) override {
    scheduler_.waitForWorkAside([&] { condition.wait(mutex); });
  }

  /// How often a thread was chosen to go on.
  std::uint64_t steps() const { return scheduler_.steps(); }
  /// Of which thread went on when, from the beginning. Two runs with the same hash took the same course.
  std::uint64_t traceHash() const { return scheduler_.traceHash(); }

 private:
  // Each uses those before it.
  VirtualScheduler scheduler_;
  const std::unique_ptr<platform::Clock> clock_;
  RunLoop mainLoop_;
};

}  // namespace zq::backend
