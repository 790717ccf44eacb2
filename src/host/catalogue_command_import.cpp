#include "host/catalogue_command_import.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <utility>

#include "host/batch_list.h"
#include "host/batch_list_import.h"
#include "host/batch_list_text.h"
#include "host/catalogue_command_json.h"
#include "host/edl.h"
#include "host/exit_codes.h"
#include "host/session_import.h"
#include "host/text.h"

namespace zq::host {
namespace {

using nlohmann::ordered_json;

constexpr std::size_t kBeginning = 512;

/// What came in, as it is told.
struct Outcome {
  std::vector<ImportedList::Sequence> sequences;
  std::vector<ListRemark> skipped;
  std::vector<ImportedList::Unmarked> unmarked;
};

class Import {
 public:
  explicit Import(const CatalogueCall& call) : call_(call), path_(call.options.list) {}

  int run() {
    const auto text = readListFile(path_);
    if (!text.ok()) return call_.failed(text.error());
    if (text.value().starts_with("\xFF\xFE") || text.value().starts_with("\xFE\xFF")) {
      return call_.failed({"Cannot import " + path_, "It is UTF-16 text; save it as UTF-8."});
    }
    // A row with a zero is a bad row; a file that begins with some is a movie, or the like.
    if (text.value().substr(0, kBeginning).find('\0') != std::string::npos) {
      return call_.failed({"Cannot import " + path_, "It is no text."});
    }
    const ListKind kind = listKindOf(path_, text.value());
    return kind == ListKind::json ? importJson(text.value()) : importRows(kind, text.value());
  }

 private:
  int importJson(const std::string& text) {
    const auto makePoster = [this](const SharedBytes& frame, std::int32_t aspectRatio) {
      return call_.module.makePoster(frame, aspectRatio);
    };
    auto tape = readTapeJson(path_, text, makePoster, call_.console);
    if (!tape.ok()) return call_.failed(tape.error());
    if (tape.value().sequences.empty()) return call_.failed({"Cannot import " + path_, "There is no clip in it."});
    if (!call_.options.tape.empty()) tape.value().name = call_.options.tape;
    if (tape.value().name.empty())
      return call_.failed({"Cannot import " + path_, "It names no tape; use --tape NAME."});
    const auto store = call_.open(true);
    if (!store.ok()) return call_.failed(store.error());
    if (Status status = checkNew(*store.value(), tape.value()); !status.ok()) return call_.failed(status.error());
    Outcome outcome;
    for (const CatalogueSequence& sequence : tape.value().sequences) {
      auto stored = store.value()->addSequence(tape.value().name, sequence);
      if (!stored.ok()) return call_.failed(stored.error());
      outcome.sequences.push_back({tape.value().name, std::move(stored.value())});
    }
    tell(outcome);
    for (const std::string& remark : tape.value().remarks) call_.console.warning(path_ + ": " + remark);
    return tape.value().remarks.empty() ? kExitOk : kExitFindings;
  }

  /// A capture may have been imported under another tape's name.
  Status checkNew(CatalogueStore& store, const ImportedTape& tape) const {
    const auto summaries = store.tapes();
    if (!summaries.ok()) return summaries.error();
    for (const TapeSummary& summary : summaries.value()) {
      const auto known = store.tape(summary.name);
      if (!known.ok()) return known.error();
      if (Status status = checkNotThere(known.value(), tape.sequences); !status.ok()) {
        return Error{"Cannot import " + path_, status.error().text()};
      }
    }
    return {};
  }

  int importRows(ListKind kind, const std::string& text) {
    auto list = kind == ListKind::edl ? Expected<BatchList>(parseEdl(text)) : parseCsvList(text);
    if (!list.ok())
      return call_.failed({"Cannot import " + path_ + ": " + list.error().message, list.error().informative});
    for (const ListRemark& row : list.value().bad) warn(row);
    if (Status status = checkRows(list.value()); !status.ok()) {
      if (call_.options.json) print({{}, list.value().bad, {}});
      return call_.failed(status.error());
    }
    return storeList(kind, list.value());
  }

  Status checkRows(BatchList& list) const {
    if (!list.bad.empty() && !call_.options.skipBad) {
      return Error{fmt::format("Nothing was imported from {}: {} wrong", path_, countedRows(list.bad.size())),
                   "Correct them, or leave them out with --skip-bad."};
    }
    if (list.rows.empty()) {
      return Error{"Cannot import " + path_, list.bad.empty() ? "The list is empty." : "None of its rows is right."};
    }
    if (call_.options.tape.empty()) return {};
    for (BatchRow& row : list.rows) {
      if (row.tape != list.rows[0].tape && row.tape != call_.options.tape) {
        return Error{"Cannot import " + path_ + " as one tape",
                     "The list has several, among them \"" + list.rows[0].tape + "\" and \"" + row.tape + "\"."};
      }
    }
    return {};
  }

  static std::string countedRows(std::size_t count) {
    return counted(static_cast<std::int64_t>(count), "row") + (count == 1 ? " is" : " are");
  }

  int storeList(ListKind kind, BatchList& list) {
    for (BatchRow& row : list.rows) {
      if (!call_.options.tape.empty()) row.tape = call_.options.tape;
    }
    const auto store = call_.open(true);
    if (!store.ok()) return call_.failed(store.error());
    if (kind == ListKind::edl && call_.options.tape.empty()) {
      if (Status status = nameTapesOfReels(*store.value(), list.rows); !status.ok()) {
        return call_.failed(status.error());
      }
    }
    auto imported = storeRows(*store.value(), list, std::filesystem::path(path_).stem().string());
    if (!imported.ok()) return call_.failed(imported.error());
    Outcome outcome{std::move(imported.value().sequences), list.bad, std::move(imported.value().unmarked)};
    for (const ListRemark& row : list.leftOut) {
      warn(row);
      outcome.skipped.push_back(row);
    }
    std::ranges::stable_sort(outcome.skipped, {}, &ListRemark::line);
    for (const ImportedList::Unmarked& clip : outcome.unmarked) {
      warn({clip.line, fmt::format("clip {} cannot be recaptured yet: {}", clip.clip, clip.reason)});
    }
    tell(outcome);
    return outcome.skipped.empty() && outcome.unmarked.empty() ? kExitOk : kExitFindings;
  }

  void warn(const ListRemark& row) const {
    call_.console.warning(fmt::format("{}: line {}: {}", path_, row.line, row.reason));
  }

  void tell(const Outcome& outcome) const {
    if (call_.options.json) return print(outcome);
    for (const ImportedList::Sequence& sequence : outcome.sequences) {
      const auto& clips = sequence.stored.clips;
      fmt::print("tape {}: {} imported into sequence {}, {} marked\n", sequence.tape,
                 counted(static_cast<std::int64_t>(clips.size()), "clip"), sequence.stored.id,
                 std::ranges::count(clips, true, &CatalogueClip::marked));
    }
  }

  static void print(const Outcome& outcome) {
    std::int64_t imported = 0;
    ordered_json ids = ordered_json::array();
    for (const ImportedList::Sequence& sequence : outcome.sequences) {
      imported += static_cast<std::int64_t>(sequence.stored.clips.size());
      for (const CatalogueClip& clip : sequence.stored.clips) ids.push_back(std::to_string(clip.id));
    }
    ordered_json skipped = ordered_json::array();
    for (const ListRemark& row : outcome.skipped) skipped.push_back({{"line", row.line}, {"reason", row.reason}});
    ordered_json json = {{"imported", imported}, {"clips", ids}, {"skipped", skipped}};
    for (const ImportedList::Unmarked& clip : outcome.unmarked) {
      json["unmarked"].push_back({{"line", clip.line}, {"clipId", std::to_string(clip.clip)}, {"reason", clip.reason}});
    }
    fmt::print("{}", printedJson(json));
  }

  const CatalogueCall& call_;
  const std::string& path_;
};

}  // namespace

int importList(const CatalogueCall& call) {
  return Import(call).run();
}

}  // namespace zq::host
