#pragma once
// A named configuration as it is kept, beside the preset that its number meant where it was saved.

#include <string>
#include <vector>

#include "base/status.h"
#include "capture/configuration.h"

namespace zq::host {

struct StoredConfiguration {
  /// By the configuration keys, its name among them.
  Configuration values;
  /// See CompressionMenu::identifierAt(); "" when it is not known. The number in `values` counts this machine's
  /// presets, which are others elsewhere, or after an update.
  std::string preset;

  std::string name() const { return configurationName(values); }
};

/// What "captureFormat" means: of a scheme that knew as received (0, 1) and what the user had chosen.
inline bool isCustomOfOldScheme(int captureFormat) {
  return captureFormat != 0 && captureFormat != 1;
}

/// An error for a name that is empty or blank, or not of characters that can be seen.
Status checkConfigurationName(const std::string& name);

/// Null when there is none of this name.
const StoredConfiguration* findConfiguration(const std::vector<StoredConfiguration>& all, const std::string& name);

/// Puts `added` in the place of that of its name, or at the end.
void putConfiguration(std::vector<StoredConfiguration>& all, StoredConfiguration added);

}  // namespace zq::host
