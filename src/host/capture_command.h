#pragma once
// `deckhand capture`: a tape becomes clips.

#include <string>
#include <vector>

#include "host/console.h"

namespace zq::host {

struct CaptureOptions {
  std::string device;
  std::string output;
  std::string format = "mov";
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
