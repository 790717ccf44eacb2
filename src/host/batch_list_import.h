#pragma once
// The rows of a list become clips of the catalogue.

#include <string>
#include <vector>

#include "host/batch_list.h"
#include "host/catalogue/catalogue_store.h"

namespace zq::host {

struct ImportedList {
  /// The new clips, in the list's order within each tape.
  struct Sequence {
    std::string tape;
    CatalogueSequence stored;
  };
  std::vector<Sequence> sequences;
  /// Clips that cannot be captured yet.
  struct Unmarked {
    int line = 0;
    std::int64_t clip = 0;
    std::string reason;
  };
  std::vector<Unmarked> unmarked;
};

/// Reels of an edit decision list become the names of the tapes in the catalogue that they stand for.
Status nameTapesOfReels(CatalogueStore& store, std::vector<BatchRow>& rows);

/// Stores the rows, a sequence of this name for each tape. When that fails for a tape, the message says which tapes
/// were stored before.
Expected<ImportedList> storeRows(CatalogueStore& store, const BatchList& list, const std::string& sequenceName);

}  // namespace zq::host
