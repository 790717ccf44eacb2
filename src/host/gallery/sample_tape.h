#pragma once
// A made-up tape for showing the views: recordings of some days, with pictures.

#include <cstdint>

#include "catalogue/tape.h"

namespace zq::host {

struct SampleTapeOptions {
  int sequences = 4;
  /// The first sequence has this many clips, each further one `fewerEach` less, and no fewer than two.
  int clips = 14;
  int fewerEach = 3;
  /// Width of the pictures in pixels, 3:2; 0 for none.
  int posterWidth = 180;
  std::uint32_t seed = 7;
};

/// Every third clip is marked; one that is marked is recaptured already. The same options make the same tape.
TapeValue sampleTape(const SampleTapeOptions& options = {});

}  // namespace zq::host
