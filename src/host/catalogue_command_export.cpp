#include "host/catalogue_command_export.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <nlohmann/json.hpp>

#include "host/catalogue_command_json.h"
#include "host/catalogue_export.h"
#include "host/edl_reels.h"
#include "host/exit_codes.h"
#include "host/text.h"

namespace zq::host {
namespace {

using nlohmann::ordered_json;

bool writeAll(int descriptor, const std::string& text) {
  std::size_t done = 0;
  while (done < text.size()) {
    const ssize_t count = ::write(descriptor, text.data() + done, text.size() - done);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return false;
    done += static_cast<std::size_t>(count);
  }
  return ::fsync(descriptor) == 0 || errno == EINVAL;
}

/// A file that is not whole does not stay.
Status writeNewFile(const std::string& path, const std::string& text) {
  const int descriptor = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
  if (descriptor < 0 && errno == EEXIST) {
    return Error{path + " exists already and was not touched", "Name another file with --output."};
  }
  if (descriptor < 0) return Error{"Cannot make " + path, std::strerror(errno)};
  const bool written = writeAll(descriptor, text);
  const int error = errno;
  const bool closed = ::close(descriptor) == 0;
  if (written && closed) return {};
  ::unlink(path.c_str());
  return Error{"Cannot write " + path, std::strerror(written ? errno : error)};
}

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
