#pragma once
// A named configuration: the capture options under keys of its own, and how they become live settings and come back.

#include <map>
#include <optional>
#include <string>

#include "platform/settings.h"

namespace zq {

/// By the ZQACConf... keys.
using Configuration = std::map<std::string, platform::SettingValue>;

/// Writes what the configuration holds into the live settings: everything but how movies are compressed.
void applyCaptureOptions(const Configuration& configuration, platform::Settings& live);
/// The size and the data of custom compression; which compression is chosen is the pop-up's matter.
void applyCompressionSettings(const Configuration& configuration, platform::Settings& live);
/// The live settings as a configuration without a name.
Configuration configurationOf(const platform::Settings& live);

/// What the configuration holds under `key`, read as leniently as a live setting; nothing when it has no such key.
std::optional<int> integerIn(const Configuration& configuration, const std::string& key);
std::string configurationName(const Configuration& configuration);

}  // namespace zq
