#pragma once
// `deckhand config ...`: named configurations of the capture settings.

#include <string>
#include <vector>

#include "host/console.h"
#include "host/run_settings.h"

namespace zq::host {

struct ConfigCommandOptions {
  /// The subcommand's name.
  std::string action;
  bool json = false;
  // Of show, save and delete.
  std::string name;
  // Of save.
  std::vector<std::string> settings;  // KEY=VALUE
  CompressionWords compression;
  // Of export and import.
  std::string file;
  std::vector<std::string> names;
  // Of save and import: a configuration that is there gives way.
  bool replace = false;
};

/// The exit code.
int runConfig(const ConfigCommandOptions& options, Console& console);

}  // namespace zq::host
