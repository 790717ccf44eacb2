#pragma once
// `deckhand recapture`: the marked clips of a tape are found on it and captured again.

#include <string>

#include "host/console.h"
#include "host/run_settings.h"

namespace zq::host {

struct RecaptureOptions {
  std::string device;
  std::string catalogue;
  std::string tape;
  std::string output;
  /// The movies' extension; "" for that of the compression.
  std::string format;
  CompressionWords compression;
  bool manual = false;
  bool realTime = false;
  bool json = false;
};

/// The exit code.
int runRecapture(const RecaptureOptions& options, Console& console);

}  // namespace zq::host
