#pragma once
// A mutex in virtual time.

#include <string>
#include <utility>
#include <vector>

#include "backends/time/virtual_scheduler.h"
#include "platform/thread.h"

namespace zq::backend {

/// Taking it while it is free, and giving it up while nobody waits, costs a comparison: the baton excludes everybody
/// else.
class VirtualMutex final : public platform::Mutex, public Waitable {
 public:
  VirtualMutex(VirtualScheduler& scheduler, std::string name) : scheduler_(scheduler), name_(std::move(name)) {}

  void lock() override;
  /// Only by the thread that holds it. Never lets another thread run.
  void unlock() override;
  std::string description() const override;

 private:
  void waitForTurn(VirtualParticipant& self);
  void wakeOne();

  // Constant after construction.
  VirtualScheduler& scheduler_;
  const std::string name_;

  // For the holder of the baton.
  VirtualParticipant* holder_ = nullptr;
  std::vector<VirtualParticipant*> waiting_;
};

}  // namespace zq::backend
