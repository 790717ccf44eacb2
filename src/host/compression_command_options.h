#pragma once
// The options of compression on the command line.

#include "host/config_command.h"
#include "host/presets_command.h"
#include "host/run_settings.h"

namespace CLI {
class App;
}

namespace zq::host {

/// --compression, --custom and --size.
void addCompression(CLI::App& command, CompressionWords& words);
/// --config: for this run.
void addConfiguration(CLI::App& command, CompressionWords& words);
/// --format of movies.
void addFormat(CLI::App& command, std::string& format);

/// `deckhand presets` and `deckhand config`.
void addPresets(CLI::App& app, PresetsOptions& options);
void addConfig(CLI::App& app, ConfigCommandOptions& options);

/// A table of the keys of --custom, for a footer; it loads the backend module.
std::string customHelp();

}  // namespace zq::host
