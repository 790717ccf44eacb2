#pragma once
// The system's clock and threads in a program with windows: the main thread's run loop is Qt's.

#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "backends/qt/qt_main_loop.h"
#include "platform/runtime.h"

namespace zq::backend {

class QtRuntime final : public platform::Runtime {
 public:
  /// Clock, threads and mutexes are those of `system`. The calling thread is the main thread.
  explicit QtRuntime(std::unique_ptr<platform::Runtime> system) : system_(std::move(system)), mainLoop_(*system_) {}

  platform::Clock& clock() override { return system_->clock(); }
  platform::MainLoop& mainLoop() override { return mainLoop_; }
  std::unique_ptr<platform::Mutex> makeMutex(const std::string& name) override { return system_->makeMutex(name); }
  std::unique_ptr<platform::Condition> makeCondition(const std::string& name) override {
    return system_->makeCondition(name);
  }
  std::unique_ptr<platform::Thread> startThread(const std::string& name, std::function<void()> run) override {
    return system_->startThread(name, std::move(run));
  }
  void runAside(const std::function<void()>& work) override { system_->runAside(work); }

 private:
  // Constant after construction.
  const std::unique_ptr<platform::Runtime> system_;
  QtMainLoop mainLoop_;
};

}  // namespace zq::backend
