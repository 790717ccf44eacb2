#pragma once
// A tape of the catalogue as a list for other programs, which an import can read again.

#include <cstdint>
#include <string>
#include <vector>

#include "host/catalogue/catalogue_store.h"

namespace zq::host {

struct ExportedTape {
  std::string text;
  std::int64_t clips = 0;
  struct LeftOut {
    std::int64_t clip = 0;
    std::string reason;
  };
  /// Clips that the form cannot hold.
  std::vector<LeftOut> leftOut;
};

/// Without the clips that are not marked; sequences that have none are left out.
CatalogueTape markedOf(const CatalogueTape& tape);

/// All there is.
ExportedTape exportJson(const CatalogueTape& tape);
/// Clips with timecodes that are not trashed.
ExportedTape exportCsv(const CatalogueTape& tape);
/// Of these, those of the first one's system.
ExportedTape exportEdl(const CatalogueTape& tape, const std::string& reel);

}  // namespace zq::host
