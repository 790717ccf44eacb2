#pragma once
// What a virtual runtime can be told, and how it says that it came to a stop.

#include <cstdint>
#include <functional>
#include <stdexcept>
#include <string>

#include "platform/clock.h"

namespace zq::backend {

/// Nothing can go on: every thread waits, or a bound on the steps was reached. what() says who waits for what.
class StuckError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

struct VirtualOptions {
  /// Breaks the ties: the same seed gives the same run.
  std::uint64_t seed = 0;
  /// How often a thread may be chosen to go on, in all; 0 is without bound.
  std::uint64_t maxSteps = 0;
  /// The same with no time passing: a loop that waits for nothing never lets it pass. 0 is without bound.
  std::uint64_t maxStepsAtOneInstant = 1'000'000;
  /// Lets work that asks for it run beside the thread whose turn it is, on another processor. Faster, but how far time
  /// gets meanwhile is no more the seed's to say.
  bool overlapsWorkAside = false;
  /// How far time gets ahead of such work at most, before it is waited for.
  platform::Duration aheadOfWorkAside = std::chrono::seconds(1);
  /// Called on the main thread with the report, before the threads are unwound. It may end the program, not block.
  std::function<void(const std::string& report)> onStuck;
};

}  // namespace zq::backend
