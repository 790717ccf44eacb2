#include "host/catalogue_command.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "host/catalogue_command_export.h"
#include "host/catalogue_command_import.h"
#include "host/catalogue_command_mark.h"
#include "host/catalogue_command_show.h"
#include "host/exit_codes.h"

namespace zq::host {
namespace {

constexpr std::size_t kTapesToName = 5;

std::string namesOf(const std::vector<TapeSummary>& tapes) {
  if (tapes.empty()) return "There is no tape in it yet.";
  std::string names;
  for (std::size_t i = 0; i < std::min(tapes.size(), kTapesToName); ++i) {
    names += fmt::format("{}\"{}\"", i == 0 ? "" : ", ", tapes[i].name);
  }
  const std::size_t more = tapes.size() - std::min(tapes.size(), kTapesToName);
  return fmt::format("It has {}{}.", names, more == 0 ? "" : fmt::format(" and {} more", more));
}

}  // namespace

Expected<std::unique_ptr<CatalogueStore>> CatalogueCall::open(bool create) const {
  return module.openCatalogue(options.catalogue, create);
}

int CatalogueCall::read(const Reading& reading) const {
  const auto store = open(false);
  const Expected<int> exitCode = store.ok() ? reading(*store.value()) : store.error();
  if (exitCode.ok()) return exitCode.value();
  const auto rest = module.openCatalogueToRead(options.catalogue);
  return rest.ok() && rest.value().damage ? readRest(rest.value(), reading) : failed(exitCode.error());
}

int CatalogueCall::readWithCare(const Reading& reading) const {
  const auto catalogue = module.openCatalogueToRead(options.catalogue);
  return catalogue.ok() ? readRest(catalogue.value(), reading) : failed(catalogue.error());
}

int CatalogueCall::readRest(const ReadableCatalogue& catalogue, const Reading& reading) const {
  if (catalogue.damage) console.warning(catalogue.damage->text());
  const Expected<int> exitCode = reading(*catalogue.store);
  if (!exitCode.ok()) return failed(exitCode.error());
  return catalogue.damage && exitCode.value() == kExitOk ? kExitFindings : exitCode.value();
}

Expected<CatalogueTape> CatalogueCall::readTape(CatalogueStore& store) const {
  auto tape = store.tape(options.tape);
  if (tape.ok()) return tape;
  const auto tapes = store.tapes();
  const auto isIt = [&](const TapeSummary& summary) { return summary.name == options.tape; };
  if (!tapes.ok() || std::ranges::any_of(tapes.value(), isIt)) return tape;
  return Error{"There is no tape \"" + options.tape + "\" in the catalogue", namesOf(tapes.value())};
}

int CatalogueCall::failed(const Error& error) const {
  console.error(error);
  return kExitFailed;
}

int runCatalogue(const CatalogueCommandOptions& options, Console& console) {
  const auto selection = parseSelection(options);
  if (!selection.ok()) {
    console.error(selection.error());
    return kExitUsage;
  }
  auto module = loadBackendModule();
  if (!module.ok()) {
    console.error(module.error());
    return kExitFailed;
  }
  const CatalogueCall call(options, *module.value(), console);
  if (options.action == "list") return listTapes(call);
  if (options.action == "show") return showTape(call);
  if (options.action == "import") return importList(call);
  if (options.action == "export") return exportTape(call);
  return changeClips(call, selection.value());
}

}  // namespace zq::host
