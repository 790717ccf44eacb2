#pragma once
// What a worn tape or a dirty head does to the frames on their way.

#include <cstdint>
#include <optional>
#include <random>

#include "backends/deck/deck_options.h"
#include "base/shared_bytes.h"

namespace zq::backend {

/// One thread at a time.
class FrameFaults {
 public:
  FrameFaults(const DeckFaults& faults, std::uint64_t seed) : faults_(faults), random_(seed) {}

  /// The frame as it leaves the deck: itself, a spoiled copy, or nothing when it is dropped.
  std::optional<SharedBytes> pass(const SharedBytes& frame, bool searching);

 private:
  bool strikes(double probability);
  SharedBytes damaged(const SharedBytes& frame);
  static SharedBytes undated(const SharedBytes& frame);
  SharedBytes stale(const SharedBytes& frame) const;

  // Constant after construction.
  const DeckFaults faults_;

  std::mt19937_64 random_;
  SharedBytes previous_;
};

}  // namespace zq::backend
