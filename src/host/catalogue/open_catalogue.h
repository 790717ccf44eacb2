#pragma once
// Opening a catalogue with other answers than the program's to what a test wants to try.

#include <memory>
#include <span>
#include <string>

#include "host/catalogue/catalogue_connection.h"
#include "host/catalogue/catalogue_schema.h"
#include "host/catalogue/catalogue_store.h"

namespace zq::host {

struct CatalogueOptions {
  bool create = false;
  /// How long to wait for other programs, in milliseconds.
  int patience = CatalogueConnection::kPatience;
  std::span<const SchemaStep> schema = catalogueSchema();
};

Expected<std::unique_ptr<CatalogueStore>> openCatalogue(const std::string& where, const CatalogueOptions& options);

}  // namespace zq::host
