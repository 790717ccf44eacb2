#pragma once
// Time and threads as one service, made once by the host: the system's, or virtual ones for tests and tape images.

#include <functional>
#include <memory>
#include <string>

#include "platform/clock.h"
#include "platform/executor.h"
#include "platform/thread.h"

namespace zq::platform {

class Runtime {
 public:
  virtual ~Runtime() = default;
  virtual Clock& clock() = 0;
  /// The run loop of the thread that made the runtime.
  virtual MainLoop& mainLoop() = 0;
  /// Names say in a deadlock report who waits for what.
  virtual std::unique_ptr<Mutex> makeMutex(const std::string& name) = 0;
  virtual std::unique_ptr<Condition> makeCondition(const std::string& name) = 0;
  virtual std::unique_ptr<Thread> startThread(const std::string& name, std::function<void()> run) = 0;
  /// Runs `work`, which uses nothing of the runtime's and nothing that other threads change: a write to a disk. Where
  /// one thread runs at a time, others may run beside it.
  virtual void runAside(const std::function<void()>& work) = 0;
  /// Waits for what work aside brings about, as condition.wait(mutex) does. No virtual time passes while such work goes
  /// on, so that no timer takes a slow disk for a standstill.
  virtual void waitForWorkAside(Condition& condition, Mutex& mutex) { condition.wait(mutex); }
};

}  // namespace zq::platform
