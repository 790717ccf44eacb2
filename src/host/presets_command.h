#pragma once
// `deckhand presets`: how movies can be compressed on this machine.

#include "host/console.h"

namespace zq::host {

struct PresetsOptions {
  bool json = false;
};

/// The exit code.
int runPresets(const PresetsOptions& options, Console& console);

}  // namespace zq::host
