#pragma once
// Which clips a subcommand is to change.

#include <cstdint>
#include <string>
#include <vector>

#include "base/calendar_date.h"
#include "base/status.h"

namespace zq::host {

struct CatalogueCommandOptions;

/// Clips by id, or those of a tape that were recorded in a range of dates.
struct ClipSelection {
  std::vector<std::int64_t> ids;
  /// Both ends belong to the range; null is an open end, and two open ends are the whole tape.
  DateValue from;
  DateValue to;

  bool isById() const { return !ids.empty(); }
  /// An undated clip is in no range but the whole tape's.
  bool covers(const DateValue& date) const;
};

/// What the command line says; an error is the user's. Subcommands that select nothing get an empty selection.
Expected<ClipSelection> parseSelection(const CatalogueCommandOptions& options);

}  // namespace zq::host
