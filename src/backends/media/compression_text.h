#pragma once
// The settings of a compression as "KEY=VALUE" texts.

#include <string>
#include <vector>

#include "backends/media/compression_settings.h"
#include "base/status.h"

namespace zq::media {

/// What is not said is as the codec has it, and H.264 is the codec when that is not said. A key or value that does not
/// exist, comes twice, or does not go with the others is an error that names what is allowed.
Expected<CompressionSettings> settingsFromTexts(const std::vector<std::string>& texts);
/// All that the codec has a choice of, the codec first.
std::vector<std::string> textsOf(const CompressionSettings& settings);
/// A table of the keys and their values, a line each.
std::string compressionTextHelp();

}  // namespace zq::media
