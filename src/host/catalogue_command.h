#pragma once
// `deckhand catalogue ...`: what is on the tapes, and what of it to capture again.

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "base/status.h"
#include "host/backend_module.h"
#include "host/catalogue/catalogue_store.h"
#include "host/console.h"

namespace zq::host {

struct CatalogueCommandOptions {
  /// The subcommand's name.
  std::string action;
  /// A file, or a postgresql:// URL.
  std::string catalogue;
  std::string tape;
  bool json = false;
  // Of mark, unmark, trash and untrash.
  std::vector<std::string> clips;
  std::string from;
  std::string to;
  bool all = false;
  // Of import.
  std::string list;
  bool skipBad = false;
  // Of export.
  bool marked = false;
  std::string format = "json";
  std::string output;
};

/// What a subcommand works with. What it did is told on standard output, the rest on the console.
class CatalogueCall {
 public:
  CatalogueCall(const CatalogueCommandOptions& ofCall, BackendModule& itsModule, Console& itsConsole)
      : options(ofCall), module(itsModule), console(itsConsole) {}

  const CatalogueCommandOptions& options;
  BackendModule& module;
  Console& console;

  /// Opens the catalogue; with `create`, makes it if need be.
  Expected<std::unique_ptr<CatalogueStore>> open(bool create) const;
  /// What reads from a catalogue: the exit code, or why it could not be read. Prints when nothing can fail any more.
  using Reading = std::function<Expected<int>(CatalogueStore&)>;
  /// The exit code of `reading`. When it meets damage, it gets what can be read of the catalogue, and that is told.
  int read(const Reading& reading) const;
  /// The same, but a file is looked through for damage first, all of it.
  int readWithCare(const Reading& reading) const;
  /// The tape of the options. An error names the tapes that there are.
  Expected<CatalogueTape> readTape(CatalogueStore& store) const;
  /// Tells the error; kExitFailed.
  int failed(const Error& error) const;

 private:
  int readRest(const ReadableCatalogue& catalogue, const Reading& reading) const;
};

/// The exit code.
int runCatalogue(const CatalogueCommandOptions& options, Console& console);

}  // namespace zq::host
