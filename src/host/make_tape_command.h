#pragma once
// `deckhand make-tape`: a tape image to try things out with.

#include <string>
#include <vector>

#include "base/status.h"
#include "host/backend_module.h"
#include "host/console.h"

namespace zq::host {

struct MakeTapeOptions {
  std::string output;
  std::string system = "pal";
  std::vector<std::string> scenes;  // DATE,SECONDS[,TIMECODE]
};

/// DATE is YYYY-MM-DDTHH:MM:SS or "none"; SECONDS may have a fraction; TIMECODE is HH:MM:SS:FF.
Expected<SceneOrder> parseScene(const std::string& text, DVSystem system);

/// The exit code.
int runMakeTape(const MakeTapeOptions& options, Console& console);

}  // namespace zq::host
