#pragma once
// A deck finds a clip by its recording date, which a list does not have: the clips that were captured from the tape do.

#include <string>

#include "host/batch_list.h"
#include "host/catalogue/catalogue_store.h"

namespace zq::host {

struct PlacedRow {
  /// Marked when it can be found on its tape.
  CatalogueClip clip;
  /// Why it cannot; empty when it can.
  std::string reason;
};

/// The row as a clip: dated by the captured clips of the tape that hold its timecodes, when all of them say the same,
/// or else by the list. `tape` is null when there is none of this name.
PlacedRow placeRow(const BatchRow& row, int listTimebase, const CatalogueTape* tape);

}  // namespace zq::host
