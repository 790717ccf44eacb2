#include "host/catalogue_command_export.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdio>
#include <nlohmann/json.hpp>

#include "host/catalogue_command_json.h"
#include "host/catalogue_export.h"
#include "host/edl_reels.h"
#include "host/exit_codes.h"
#include "host/new_file.h"
#include "host/text.h"

namespace zq::host {
namespace {

using nlohmann::ordered_json;

/// In the order in which they came, so that a tape keeps its reel when others are added.
Expected<std::string> reelOf(CatalogueStore& store, const std::string& tape) {
  auto tapes = store.tapes();
  if (!tapes.ok()) return tapes.error();
  std::ranges::sort(tapes.value(), {}, &TapeSummary::id);
  std::vector<std::string> names;
  for (const TapeSummary& summary : tapes.value()) names.push_back(summary.name);
  const std::vector<std::string> reels = reelNames(names);
  const auto at = static_cast<std::size_t>(std::ranges::find(names, tape) - names.begin());
  if (at == names.size()) return Error{"There is no tape \"" + tape + "\" in the catalogue", ""};
  return reels[at];
}

ExportedTape exported(const CatalogueCommandOptions& options, CatalogueStore& store, const CatalogueTape& whole) {
  const CatalogueTape tape = options.marked ? markedOf(whole) : whole;
  if (options.format == "json") return exportJson(tape);
  if (options.format == "csv") return exportCsv(tape);
  const auto reel = reelOf(store, tape.name);
  // What is left of a damaged catalogue may not have the names of its tapes.
  return exportEdl(tape, reel.ok() ? reel.value() : plainReelName(tape.name));
}

void tell(const CatalogueCall& call, const ExportedTape& tape) {
  ordered_json skipped = ordered_json::array();
  for (const ExportedTape::LeftOut& clip : tape.leftOut) {
    skipped.push_back({{"clipId", std::to_string(clip.clip)}, {"reason", clip.reason}});
    call.console.warning(fmt::format("clip {} is left out: {}", clip.clip, clip.reason));
  }
  if (call.options.output.empty()) return;
  if (call.options.json) {
    fmt::print("{}", printedJson({{"exported", tape.clips}, {"output", call.options.output}, {"skipped", skipped}}));
  } else {
    fmt::print("{}: {}\n", call.options.output, counted(tape.clips, "clip"));
  }
}

}  // namespace

int exportTape(const CatalogueCall& call) {
  if (call.options.json && call.options.output.empty() && call.options.format != "json") {
    call.console.error({"--json and --format " + call.options.format + " cannot both be printed",
                        "Name a file for the list with --output."});
    return kExitUsage;
  }
  return call.readWithCare([&](CatalogueStore& store) -> Expected<int> {
    const auto tape = call.readTape(store);
    if (!tape.ok()) return tape.error();
    const ExportedTape list = exported(call.options, store, tape.value());
    if (call.options.output.empty()) {
      std::fwrite(list.text.data(), 1, list.text.size(), stdout);
    } else if (Status status = writeNewFile(call.options.output, list.text); !status.ok()) {
      return status.error();
    }
    tell(call, list);
    return list.leftOut.empty() ? kExitOk : kExitFindings;
  });
}

}  // namespace zq::host
