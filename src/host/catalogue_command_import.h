#pragma once
// `deckhand catalogue import`: captures, lists of other programs and exported tapes become clips.

#include "host/catalogue_command.h"

namespace zq::host {

/// The exit code.
int importList(const CatalogueCall& call);

}  // namespace zq::host
