#include "host/catalogue_command_mark.h"

#include <fmt/format.h>

#include <nlohmann/json.hpp>
#include <utility>

#include "host/catalogue_command_json.h"
#include "host/exit_codes.h"
#include "host/text.h"

namespace zq::host {
namespace {

using nlohmann::ordered_json;

struct LeftOut {
  std::int64_t clip = 0;
  std::string reason;
};

/// Why a clip cannot be found on its tape; "" when it can.
std::string whyNotFound(const CatalogueClip& clip) {
  if (!clip.recordingDate) return "it has no recording date by which a deck could find it";
  if (!clip.startTimecode || !clip.endTimecode) return "it has no timecodes by which a deck could find it";
  return "";
}

/// One of the four changes, on one selection.
class ClipChange {
 public:
  ClipChange(const CatalogueCall& call, CatalogueStore& store, const ClipSelection& selection)
      : call_(call), store_(store), selection_(selection), action_(call.options.action) {}

  int run() {
    if (Status status = selection_.isById() ? chooseByIds() : chooseOfTape(); !status.ok()) {
      return call_.failed(status.error());
    }
    const auto changed = apply();
    if (!changed.ok()) return call_.failed(changed.error());
    tell(changed.value());
    return leftOut_.empty() ? kExitOk : kExitFindings;
  }

 private:
  bool wantsChange(const CatalogueClip& clip) const {
    if (action_ == "mark") return !clip.marked;
    if (action_ == "unmark") return clip.marked;
    return clip.trashed == (action_ == "untrash");
  }

  Status chooseByIds() {
    auto clips = store_.clips(selection_.ids);
    if (!clips.ok()) return clips.error();
    for (CatalogueClip& clip : clips.value()) {
      if (Status status = checkMarkable(clip); !status.ok()) return status;
      if (wantsChange(clip)) chosen_.push_back(std::move(clip));
    }
    return {};
  }

  Status checkMarkable(const CatalogueClip& clip) const {
    if (action_ != "mark") return {};
    const std::string reason = clip.trashed ? "it is trashed; untrash it first" : whyNotFound(clip);
    if (reason.empty()) return {};
    return Error{fmt::format("Clip {} cannot be marked: {}", clip.id, reason), "No clip was marked."};
  }

  Status chooseOfTape() {
    auto tape = call_.readTape(store_);
    if (!tape.ok()) return tape.error();
    bool any = false;
    for (CatalogueSequence& sequence : tape.value().sequences) {
      for (CatalogueClip& clip : sequence.clips) any = choose(std::move(clip)) || any;
    }
    if (any || selection_.covers(nullptr)) return {};
    for (const LeftOut& clip : leftOut_) call_.console.warning(fmt::format("clip {}: {}", clip.clip, clip.reason));
    return Error{fmt::format("No clip of tape \"{}\" was recorded in this range", call_.options.tape),
                 "\"deckhand catalogue show\" has their dates."};
  }

  /// Whether the clip is one of the selection.
  bool choose(CatalogueClip clip) {
    if (!wantsChange(clip)) return selection_.covers(clip.recordingDate);
    const bool isCovered = selection_.covers(clip.recordingDate);
    if (action_ == "mark" && clip.trashed) {
      if (isCovered) ++trashed_;
      return isCovered;
    }
    std::string reason = action_ == "mark" && isCovered ? whyNotFound(clip) : "";
    if (!isCovered && !clip.recordingDate) reason = "it has no recording date, and so is in no range";
    if (!reason.empty()) {
      leftOut_.push_back({clip.id, std::move(reason)});
    } else if (isCovered) {
      chosen_.push_back(std::move(clip));
    }
    return isCovered;
  }

  Expected<std::int64_t> apply() {
    std::vector<std::int64_t> ids;
    std::vector<std::int64_t> marked;
    for (const CatalogueClip& clip : chosen_) {
      ids.push_back(clip.id);
      if (clip.marked) marked.push_back(clip.id);
    }
    if (ids.empty()) return std::int64_t{0};
    if (action_ == "mark" || action_ == "unmark") return store_.setMarked(ids, action_ == "mark");
    // In this order: what stops in between leaves no trashed clip that is to be captured again.
    if (action_ == "trash" && !marked.empty()) {
      const auto unmarked = store_.setMarked(marked, false);
      if (!unmarked.ok()) return unmarked;
    }
    return store_.setTrashed(ids, action_ == "trash");
  }

  void tell(std::int64_t changed) const {
    ordered_json skipped = ordered_json::array();
    for (const LeftOut& clip : leftOut_) {
      skipped.push_back({{"clipId", std::to_string(clip.clip)}, {"reason", clip.reason}});
      call_.console.warning(fmt::format("clip {} is left out: {}", clip.clip, clip.reason));
    }
    if (call_.options.json) {
      fmt::print("{}", printedJson({{"changed", changed}, {"clips", idsJson(chosen_)}, {"skipped", skipped}}));
    } else {
      const std::string trashed =
          trashed_ == 0 ? "" : fmt::format(" ({} left alone)", counted(trashed_, "trashed clip"));
      fmt::print("{} {}ed{}\n", counted(changed, "clip"), action_, trashed);
    }
  }

  const CatalogueCall& call_;
  CatalogueStore& store_;
  const ClipSelection& selection_;
  const std::string action_;
  std::vector<CatalogueClip> chosen_;
  std::vector<LeftOut> leftOut_;
  std::int64_t trashed_ = 0;
};

}  // namespace

int changeClips(const CatalogueCall& call, const ClipSelection& selection) {
  const auto store = call.open(false);
  if (!store.ok()) return call.failed(store.error());
  return ClipChange(call, *store.value(), selection).run();
}

}  // namespace zq::host
