#pragma once
// `deckhand catalogue list` and `show`: what is in a catalogue.

#include "host/catalogue_command.h"

namespace zq::host {

/// The exit code.
int listTapes(const CatalogueCall& call);
int showTape(const CatalogueCall& call);

}  // namespace zq::host
