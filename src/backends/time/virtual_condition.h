#pragma once
// A condition in virtual time.

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "backends/time/virtual_scheduler.h"
#include "platform/thread.h"

namespace zq::backend {

class VirtualCondition final : public platform::Condition, public Waitable {
 public:
  VirtualCondition(VirtualScheduler& scheduler, std::string name) : scheduler_(scheduler), name_(std::move(name)) {}

  void wait(platform::Mutex& mutex) override { waitFor(mutex, std::nullopt); }
  bool waitUntil(platform::Mutex& mutex, platform::TimePoint deadline) override { return waitFor(mutex, deadline); }
  void notifyAll() override;
  std::string description() const override { return "condition '" + name_ + "'"; }

 private:
  bool waitFor(platform::Mutex& mutex, std::optional<platform::TimePoint> deadline);

  // Constant after construction.
  VirtualScheduler& scheduler_;
  const std::string name_;

  // For the holder of the baton. A thread is taken off the list by the notification, or when it has run out of time.
  std::vector<VirtualParticipant*> waiting_;
};

}  // namespace zq::backend
