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

/// Whether the object that a store has under this key is a value of it; a store may have been edited by hand.
Status checkStored(const std::string& key, const platform::SettingValue& value);

/// One line for each key, for the help.
std::string settingsHelp();

/// The keys that a run has, in a fixed order.
std::vector<std::string> settingKeys();

}  // namespace zq::host
