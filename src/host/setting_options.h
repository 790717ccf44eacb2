#pragma once
// `--set KEY=VALUE`: which live settings a run may change, and to what.

#include <string>
#include <vector>

#include "base/status.h"
#include "platform/settings.h"

namespace zq::host {

struct SettingChange {
  std::string key;
  platform::SettingValue value;
};

/// An error names what is wrong and what would be right.
Expected<SettingChange> parseSetting(const std::string& text);

/// All of them, or the first error.
Expected<std::vector<SettingChange>> parseSettings(const std::vector<std::string>& texts);

/// The object that a store has under this key as a value of the key's own kind, or an error when it is none; a store
/// may have been edited by hand.
Expected<platform::SettingValue> readStored(const std::string& key, const platform::SettingValue& value);

/// One line for each key, for the help.
std::string settingsHelp();

/// The keys that a run has, in a fixed order.
std::vector<std::string> settingKeys();

}  // namespace zq::host
