#pragma once
// The user's named configurations, in the settings store.

#include <string>
#include <vector>

#include "base/status.h"
#include "host/backend_module.h"
#include "host/stored_configuration.h"
#include "platform/settings.h"

namespace zq::host {

/// Main thread only.
class ConfigurationStore {
 public:
  /// Both outlive it; `settings` are those that `module` made.
  ConfigurationStore(platform::Settings& settings, BackendModule& module) : settings_(settings), module_(module) {}

  /// In the order in which they were added.
  Expected<std::vector<StoredConfiguration>> all() const;
  /// An error that names the ones there are.
  Expected<StoredConfiguration> named(const std::string& name) const;
  /// Keeps these instead. Nothing is written where that would lose what is stored.
  Status replaceAll(const std::vector<StoredConfiguration>& configurations);

 private:
  platform::Settings& settings_;
  BackendModule& module_;
};

/// "There is no configuration ...", with the names that there are.
Error noSuchConfiguration(const std::string& name, const std::vector<StoredConfiguration>& all);

}  // namespace zq::host
