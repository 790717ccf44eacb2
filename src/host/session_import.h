#pragma once
// Reports of captures, and exported tapes, on their way into the catalogue.

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "base/log.h"
#include "base/status.h"
#include "host/catalogue/catalogue_store.h"
#include "host/catalogue_entry.h"

namespace zq::host {

struct ImportedTape {
  /// As the file says.
  std::string name;
  std::vector<CatalogueSequence> sequences;
  /// What the catalogue does not keep of it.
  std::vector<std::string> remarks;
};

/// Reads a capture's session.json, whose files are in its folder, or what an export wrote as JSON. Messages name the
/// clip and what is wrong with it.
Expected<ImportedTape> readTapeJson(const std::string& path, const std::string& text,
                                    const CatalogueEntry::MakePoster& makePoster, Log& log);

/// An error that says where, when a file of these sequences is already a clip's of this tape.
Status checkNotThere(const CatalogueTape& tape, const std::vector<CatalogueSequence>& sequences);

}  // namespace zq::host
