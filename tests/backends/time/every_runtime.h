#pragma once
// Runs a test on the system's time and threads, on the same with Qt's event loop, and on virtual ones.

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <memory>
#include <string>

#include "backends/qt/qt_runtime.h"
#include "backends/time/real_runtime.h"
#include "backends/time/virtual_runtime.h"

namespace zq::backend {

enum class RuntimeKind { kReal, kQt, kVirtual };

/// Qt's event loop needs one a process.
inline void haveQtApplication() {
  static int count = 1;
  static char name[] = "test";
  static char* arguments[] = {name, nullptr};
  static const QCoreApplication application(count, arguments);
}

inline std::unique_ptr<platform::Runtime> makeRuntime(RuntimeKind kind) {
  if (kind == RuntimeKind::kReal) return std::make_unique<RealRuntime>();
  if (kind == RuntimeKind::kQt) {
    haveQtApplication();
    return std::make_unique<QtRuntime>(std::make_unique<RealRuntime>());
  }
  return std::make_unique<VirtualRuntime>();
}

inline std::string nameOf(const testing::TestParamInfo<RuntimeKind>& info) {
  switch (info.param) {
    case RuntimeKind::kReal:
      return "Real";
    case RuntimeKind::kQt:
      return "Qt";
    case RuntimeKind::kVirtual:
      break;
  }
  return "Virtual";
}

/// A test of what every runtime promises. Nothing in it may wait for real time to pass: deadlines are past, or far and
/// never reached.
class EveryRuntime : public testing::TestWithParam<RuntimeKind> {
 protected:
  const std::unique_ptr<platform::Runtime> runtime_ = makeRuntime(GetParam());
  platform::Clock& clock_ = runtime_->clock();
  platform::MainLoop& loop_ = runtime_->mainLoop();
};

inline const auto kEveryRuntime = testing::Values(RuntimeKind::kReal, RuntimeKind::kQt, RuntimeKind::kVirtual);

}  // namespace zq::backend
