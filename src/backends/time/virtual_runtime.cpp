#include "backends/time/virtual_runtime.h"

#include <utility>

#include "backends/time/deadline.h"
#include "backends/time/virtual_condition.h"
#include "backends/time/virtual_mutex.h"

namespace zq::backend {
namespace {

class VirtualClock final : public platform::Clock {
 public:
  explicit VirtualClock(VirtualScheduler& scheduler) : scheduler_(scheduler) {}

  platform::TimePoint now() const override { return scheduler_.now(); }
  void sleepFor(platform::Duration duration) override {
    scheduler_.block(nullptr, deadlineAfter(scheduler_.now(), duration));
  }

 private:
  VirtualScheduler& scheduler_;
};

/// May outlive the runtime, whose destructor has then ended the thread.
class VirtualThread final : public platform::Thread {
 public:
  VirtualThread(VirtualScheduler& scheduler, std::shared_ptr<VirtualParticipant> participant)
      : scheduler_(scheduler), participant_(std::move(participant)) {}
  ~VirtualThread() override {
    if (!hasFinished()) scheduler_.joinQuietly(*participant_);
    endSystemThread();
  }
  VirtualThread(const VirtualThread&) = delete;
  VirtualThread& operator=(const VirtualThread&) = delete;

  void join() override {
    if (!hasFinished()) scheduler_.join(*participant_);
    endSystemThread();
  }

 private:
  bool hasFinished() const { return participant_->state == VirtualParticipant::State::kFinished; }
  void endSystemThread() {
    if (hasFinished() && participant_->thread.joinable()) participant_->thread.join();
  }

  VirtualScheduler& scheduler_;
  const std::shared_ptr<VirtualParticipant> participant_;
};

}  // namespace

VirtualRuntime::VirtualRuntime(Options options)
    : scheduler_(std::move(options)), clock_(std::make_unique<VirtualClock>(scheduler_)), mainLoop_(*this) {}

// Before anything goes: threads that are left may use any part of it while they are unwound.
VirtualRuntime::~VirtualRuntime() {
  scheduler_.end();
}

std::unique_ptr<platform::Mutex> VirtualRuntime::makeMutex(const std::string& name) {
  return std::make_unique<VirtualMutex>(scheduler_, name);
}

std::unique_ptr<platform::Condition> VirtualRuntime::makeCondition(const std::string& name) {
  return std::make_unique<VirtualCondition>(scheduler_, name);
}

std::unique_ptr<platform::Thread> VirtualRuntime::startThread(const std::string& name, std::function<void()> run) {
  return std::make_unique<VirtualThread>(scheduler_, scheduler_.start(name, std::move(run)));
}

}  // namespace zq::backend
