#pragma once
// `deckhand catalogue mark`, `unmark`, `trash` and `untrash`: what is to become of clips.

#include "host/catalogue_command.h"
#include "host/catalogue_command_selection.h"

namespace zq::host {

/// The exit code.
int changeClips(const CatalogueCall& call, const ClipSelection& selection);

}  // namespace zq::host
