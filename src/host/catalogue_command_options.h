#pragma once
// The words of `deckhand catalogue`.

#include "host/catalogue_command.h"

namespace CLI {
class App;
}

namespace zq::host {

/// Adds the command and its subcommands, which write into `options`; these must outlive the app.
void addCatalogue(CLI::App& app, CatalogueCommandOptions& options);

}  // namespace zq::host
