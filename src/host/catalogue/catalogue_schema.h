#pragma once
// The catalogue's tables, and how an older catalogue gets those of today.

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace zq::host {

class CatalogueConnection;

/// The statements that lead from one version to the next. In them, {id} is the type of a column of fresh ids, {key}
/// that of a key that refers to one, {bytes} that of bytes, {text} that of a text that is sorted by its bytes.
struct SchemaStep {
  std::vector<std::string> statements;
};

/// The first one makes version 1 out of nothing. Steps are only ever added: catalogues of every version exist.
std::span<const SchemaStep> catalogueSchema();

/// The version of the catalogue's tables. Throws a failure when there is none, or one later than these steps know.
std::int64_t versionOf(CatalogueConnection& connection, std::span<const SchemaStep> steps);

/// Brings the catalogue to the version of the last of these steps, in one transaction; with `create` also one that has
/// no tables yet. Throws a failure, with nothing changed, when there is no catalogue, or one of a later version.
void prepareSchema(CatalogueConnection& connection, bool create, std::span<const SchemaStep> steps = catalogueSchema());

}  // namespace zq::host
