#pragma once
// The system's clock and threads.

#include <memory>
#include <string>

#include "backends/time/run_loop.h"
#include "platform/runtime.h"

namespace zq::backend {

class RealRuntime final : public platform::Runtime {
 public:
  /// The calling thread is the main thread.
  RealRuntime();
  ~RealRuntime() override;

  platform::Clock& clock() override { return *clock_; }
  platform::MainLoop& mainLoop() override { return mainLoop_; }
  std::unique_ptr<platform::Mutex> makeMutex(const std::string& name) override;
  /// For mutexes of this runtime's kind only.
  std::unique_ptr<platform::Condition> makeCondition(const std::string& name) override;
  /// The system shows the first 15 bytes of the name.
  std::unique_ptr<platform::Thread> startThread(const std::string& name, std::function<void()> run) override;
  void runAside(const std::function<void()>& work) override { work(); }

 private:
  // Constant after construction. The loop takes its clock, mutex and condition from this runtime: it stays last.
  const std::unique_ptr<platform::Clock> clock_;
  RunLoop mainLoop_;
};

}  // namespace zq::backend
