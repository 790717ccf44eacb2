#pragma once
// What the catalogue's subcommands print as JSON.

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "host/catalogue/catalogue_store.h"

namespace zq::host {

/// Ids are their decimal text.
nlohmann::ordered_json clipJson(const CatalogueClip& clip);
nlohmann::ordered_json sequenceJson(const CatalogueSequence& sequence);
nlohmann::ordered_json tapeJson(const CatalogueTape& tape);
nlohmann::ordered_json idsJson(const std::vector<CatalogueClip>& clips);

/// Indented, with a line end; what is no UTF-8 in it is replaced.
std::string printedJson(const nlohmann::ordered_json& json);

}  // namespace zq::host
