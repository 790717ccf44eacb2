#pragma once
// `deckhand inspect`: what is on a tape.

#include <string>

#include "host/console.h"

namespace zq::host {

struct InspectOptions {
  std::string tape;
  bool frames = false;
  bool json = false;
  bool csv = false;
};

/// The exit code.
int runInspect(const InspectOptions& options, Console& console);

}  // namespace zq::host
