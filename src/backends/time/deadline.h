#pragma once
// When a delay ends.

#include "platform/clock.h"

namespace zq::backend {

/// `now` + `delay`, or the end of time for a delay that reaches beyond it: "for ever" is Duration::max().
inline platform::TimePoint deadlineAfter(platform::TimePoint now, platform::Duration delay) {
  if (delay <= platform::Duration::zero()) return now;
  return delay > platform::TimePoint::max() - now ? platform::TimePoint::max() : now + delay;
}

}  // namespace zq::backend
