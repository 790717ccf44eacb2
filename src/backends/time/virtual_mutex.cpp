#include "backends/time/virtual_mutex.h"

namespace zq::backend {

void VirtualMutex::lock() {
  VirtualParticipant& self = scheduler_.running();
  // A runtime that came to a stop locks nobody out: the holder may have ended, and this may be a destructor.
  if (holder_ && !scheduler_.comesApart()) {
    waitForTurn(self);
  } else {
    holder_ = &self;
  }
}

void VirtualMutex::unlock() {
  if (holder_ != &scheduler_.running()) {
    // Threads that are unwound in the middle of a wait give up a mutex that they did not get back.
    if (scheduler_.comesApart()) return;
    scheduler_.misuse("mutex '" + name_ + "' unlocked by a thread that does not hold it");
  }
  holder_ = nullptr;
  if (!waiting_.empty()) wakeOne();
}

std::string VirtualMutex::description() const {
  std::string text = "mutex '" + name_ + "', ";
  if (!holder_) return text + "held by nobody";
  text += "held by '" + holder_->name + "'";
  return holder_->state == VirtualParticipant::State::kFinished ? text + ", which has ended" : text;
}

void VirtualMutex::waitForTurn(VirtualParticipant& self) {
  do {
    const WaitingPlace place(waiting_, self);
    scheduler_.block(this, std::nullopt);
    if (scheduler_.comesApart()) return;
  } while (holder_ && holder_ != &self);
  holder_ = &self;
}

// By chance the woken thread owns the mutex at once, or must be quicker than whoever asks next. With the first alone no
// test would see a mutex snatched away; with the second alone a thread that takes it again at once would starve the
// rest.
void VirtualMutex::wakeOne() {
  VirtualParticipant* const next = waiting_[scheduler_.choose(waiting_.size())];
  std::erase(waiting_, next);
  if (scheduler_.choose(2) == 0) holder_ = next;
  scheduler_.wake(*next);
}

}  // namespace zq::backend
