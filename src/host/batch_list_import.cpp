#include "host/batch_list_import.h"

#include <algorithm>
#include <map>
#include <optional>
#include <utility>

#include "host/batch_list_dating.h"
#include "host/edl_reels.h"

namespace zq::host {
namespace {

/// The rows of one tape.
struct TapeRows {
  std::string tape;
  std::vector<const BatchRow*> rows;
};

std::vector<TapeRows> byTape(const std::vector<BatchRow>& rows) {
  std::vector<TapeRows> tapes;
  std::map<std::string, std::size_t> indexOf;
  for (const BatchRow& row : rows) {
    const auto [at, isNew] = indexOf.emplace(row.tape, tapes.size());
    if (isNew) tapes.push_back({row.tape, {}});
    tapes[at->second].rows.push_back(&row);
  }
  return tapes;
}

std::string storedBefore(const ImportedList& imported) {
  if (imported.sequences.empty()) return "Nothing was imported.";
  std::string names;
  for (const ImportedList::Sequence& sequence : imported.sequences) {
    names += (names.empty() ? "\"" : ", \"") + sequence.tape + "\"";
  }
  return "Imported before that: the rows of tape " + names + ".";
}

}  // namespace

Status nameTapesOfReels(CatalogueStore& store, std::vector<BatchRow>& rows) {
  auto tapes = store.tapes();
  if (!tapes.ok()) return tapes.error();
  std::ranges::sort(tapes.value(), {}, &TapeSummary::id);
  std::vector<std::string> names;
  for (const TapeSummary& tape : tapes.value()) names.push_back(tape.name);
  const std::vector<std::string> reels = reelNames(names);
  for (BatchRow& row : rows) {
    // The list may have told the name.
    if (std::ranges::find(names, row.tape) != names.end()) continue;
    const auto reel = std::ranges::find(reels, row.tape);
    if (reel != reels.end()) row.tape = names[static_cast<std::size_t>(reel - reels.begin())];
  }
  return {};
}

Expected<ImportedList> storeRows(CatalogueStore& store, const BatchList& list, const std::string& sequenceName) {
  const auto summaries = store.tapes();
  if (!summaries.ok()) return summaries.error();
  ImportedList imported;
  for (const TapeRows& rows : byTape(list.rows)) {
    std::optional<CatalogueTape> tape;
    if (std::ranges::find(summaries.value(), rows.tape, &TapeSummary::name) != summaries.value().end()) {
      auto known = store.tape(rows.tape);
      if (!known.ok()) return Error{known.error().text(), storedBefore(imported)};
      tape = std::move(known.value());
    }
    CatalogueSequence sequence;
    sequence.name = sequenceName;
    std::vector<std::string> reasons;
    for (const BatchRow* row : rows.rows) {
      PlacedRow placed = placeRow(*row, list.timebase, tape ? &*tape : nullptr);
      sequence.clips.push_back(std::move(placed.clip));
      reasons.push_back(std::move(placed.reason));
    }
    auto stored = store.addSequence(rows.tape, sequence);
    if (!stored.ok()) return Error{stored.error().text(), storedBefore(imported)};
    for (std::size_t i = 0; i < reasons.size(); ++i) {
      if (reasons[i].empty()) continue;
      imported.unmarked.push_back({rows.rows[i]->line, stored.value().clips[i].id, std::move(reasons[i])});
    }
    imported.sequences.push_back({rows.tape, std::move(stored.value())});
  }
  std::ranges::stable_sort(imported.unmarked, {}, &ImportedList::Unmarked::line);
  return imported;
}

}  // namespace zq::host
