#pragma once
// `deckhand recapture`: the marked clips of a tape are found on it and captured again.

#include <string>

#include "host/console.h"

namespace zq::host {

struct RecaptureOptions {
  std::string device;
  std::string catalogue;
  std::string tape;
  std::string output;
  std::string format = "mov";
  bool manual = false;
  bool realTime = false;
  bool json = false;
};

/// The exit code.
int runRecapture(const RecaptureOptions& options, Console& console);

}  // namespace zq::host
