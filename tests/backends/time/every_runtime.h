#pragma once
// Runs a test on the system's time and threads and on virtual ones.

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "backends/time/real_runtime.h"
#include "backends/time/virtual_runtime.h"

namespace zq::backend {

enum class RuntimeKind { kReal, kVirtual };

inline std::unique_ptr<platform::Runtime> makeRuntime(RuntimeKind kind) {
  if (kind == RuntimeKind::kReal) return std::make_unique<RealRuntime>();
  return std::make_unique<VirtualRuntime>();
}

inline std::string nameOf(const testing::TestParamInfo<RuntimeKind>& info) {
  return info.param == RuntimeKind::kReal ? "Real" : "Virtual";
}

/// A test of what every runtime promises. Nothing in it may wait for real time to pass: deadlines are past, or far and
/// never reached.
class EveryRuntime : public testing::TestWithParam<RuntimeKind> {
 protected:
  const std::unique_ptr<platform::Runtime> runtime_ = makeRuntime(GetParam());
  platform::Clock& clock_ = runtime_->clock();
  platform::MainLoop& loop_ = runtime_->mainLoop();
};

inline const auto kEveryRuntime = testing::Values(RuntimeKind::kReal, RuntimeKind::kVirtual);

}  // namespace zq::backend
