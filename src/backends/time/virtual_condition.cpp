#include "backends/time/virtual_condition.h"

#include <algorithm>

namespace zq::backend {

void VirtualCondition::notifyAll() {
  scheduler_.running();
  for (VirtualParticipant* participant : waiting_) scheduler_.wake(*participant);
  waiting_.clear();
}

// A thread whose deadline is reached stays listed until it runs: whether a notification of the same instant comes in
// time is one more tie that the seed breaks.
bool VirtualCondition::waitFor(platform::Mutex& mutex, std::optional<platform::TimePoint> deadline) {
  VirtualParticipant& self = scheduler_.running();
  bool notified = false;
  {
    const WaitingPlace place(waiting_, self);
    mutex.unlock();
    scheduler_.block(this, deadline);
    notified = std::find(waiting_.begin(), waiting_.end(), &self) == waiting_.end();
  }
  mutex.lock();
  return notified;
}

}  // namespace zq::backend
