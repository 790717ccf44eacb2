#pragma once
// Whether this machine compresses as fast as a tape plays: asked before a capture that cannot wait.

#include <functional>
#include <string>

#include "backends/deck/tape_image.h"
#include "base/log.h"
#include "host/backend_module.h"
#include "host/run_settings.h"
#include "platform/compression.h"

namespace zq::host {

/// Measures the run's compression on some frames of the tape, which nobody else reads meanwhile, and warns of one that
/// does not keep up; a hopeless one shows on a few. `stopAsked` ends it between two goes, without a word. Nothing for
/// movies as received, and for a run that writes none.
void warnIfTooSlow(BackendModule& module, platform::CompressionPlatform& compression, RunSettings& settings,
                   const std::string& extension, backend::TapeImage& tape, Log& log,
                   const std::function<bool()>& stopAsked);

}  // namespace zq::host
