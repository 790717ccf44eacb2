#pragma once
// `deckhand catalogue export`: a tape as a list for other programs.

#include "host/catalogue_command.h"

namespace zq::host {

/// The exit code.
int exportTape(const CatalogueCall& call);

}  // namespace zq::host
