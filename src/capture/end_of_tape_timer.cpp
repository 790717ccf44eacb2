#include "capture/end_of_tape_timer.h"

#include <utility>

namespace zq {

void EndOfTapeTimer::restart(platform::Duration delay, std::function<void(std::uint64_t)> fired) {
  cancel();
  timer_ = mainThread_.startTimer(delay, [start = start_, fired = std::move(fired)] { fired(start); });
}

// A recording may end on another thread than the timer's, so the timer is stopped over there, and one that fires
// meanwhile finds that its number no longer counts.
void EndOfTapeTimer::cancel() {
  ++start_;
  if (!timer_) return;
  if (mainThread_.isCurrent()) {
    timer_->invalidate();
  } else {
    mainThread_.post([timer = timer_] { timer->invalidate(); });
  }
  timer_.reset();
}

}  // namespace zq
