#pragma once
// `deckhand capture`: a tape becomes clips.

#include <string>
#include <vector>

#include "host/console.h"
#include "host/run_settings.h"

namespace zq::host {

struct CaptureOptions {
  std::string device;
  std::string output;
  /// The movies' extension; "" for that of the compression.
  std::string format;
  CompressionWords compression;
  bool realTime = false;
  std::vector<std::string> settings;  // KEY=VALUE
  bool json = false;
  /// Where to store what was captured. Empty for nowhere.
  std::string catalogue;
  /// As which tape; empty for the name of the tape image.
  std::string tape;
};

/// The exit code.
int runCapture(const CaptureOptions& options, Console& console);

}  // namespace zq::host
