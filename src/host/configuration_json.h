#pragma once
// Named configurations as JSON: in the user's settings, and in the file that `deckhand config export` writes.
//
//   {"deckhandConfigurations": 1,
//    "configurations": [{"optionsName": "archive", "detectScenes": true, ..., "preset": "..."}]}
//
// Data is base64.

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "base/status.h"
#include "host/stored_configuration.h"

namespace zq::host {

nlohmann::ordered_json configurationJson(const StoredConfiguration& configuration);
nlohmann::ordered_json configurationsJson(const std::vector<StoredConfiguration>& configurations);

/// All of them or, where anything is wrong or of a newer version, none: an error, which calls the text `what`.
Expected<std::vector<StoredConfiguration>> readConfigurations(const std::string& text, const std::string& what);

}  // namespace zq::host
