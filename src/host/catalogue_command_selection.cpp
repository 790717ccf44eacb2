#include "host/catalogue_command_selection.h"

#include <algorithm>
#include <charconv>
#include <set>

#include "host/batch_list_text.h"
#include "host/catalogue_command.h"

namespace zq::host {
namespace {

Status parseId(const std::string& text, std::int64_t& id) {
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, id);
  if (error == std::errc() && stop == end && id > 0) return {};
  return Error{"--clip " + text + " is not a clip's id", "It is a number; \"deckhand catalogue show\" has them."};
}

/// A day alone begins or ends with it.
Status parseDate(const char* option, const std::string& text, const char* timeOfDay, DateValue& date) {
  if (text.empty()) return {};
  date = dateOf(text);
  if (!date) date = dateOf(text + timeOfDay);
  if (date) return {};
  return Error{std::string(option) + " " + text + " is not a date",
               "Write it as YYYY-MM-DD or YYYY-MM-DDTHH:MM:SS, as in 2004-07-15T13:30:45."};
}

bool selects(const std::string& action) {
  return action == "mark" || action == "unmark" || action == "trash" || action == "untrash";
}

Expected<ClipSelection> parseIds(const CatalogueCommandOptions& options) {
  if (!options.tape.empty() || !options.from.empty() || !options.to.empty() || options.all) {
    return Error{"--clip selects clips by their ids, and --tape those of a tape", "Use one of them."};
  }
  ClipSelection selection;
  std::set<std::int64_t> seen;
  for (const std::string& text : options.clips) {
    std::int64_t id = 0;
    if (Status status = parseId(text, id); !status.ok()) return status.error();
    if (seen.insert(id).second) selection.ids.push_back(id);
  }
  return selection;
}

Expected<ClipSelection> parseRange(const CatalogueCommandOptions& options) {
  const bool hasRange = !options.from.empty() || !options.to.empty();
  if (options.tape.empty() || (!hasRange && !options.all)) {
    return Error{"No clips are selected", "Use --clip ID, or --tape NAME with --from DATE, --to DATE, both, or --all."};
  }
  if (hasRange && options.all) return Error{"--all is the whole tape, without --from and --to", ""};
  ClipSelection selection;
  if (Status status = parseDate("--from", options.from, "T00:00:00", selection.from); !status.ok())
    return status.error();
  if (Status status = parseDate("--to", options.to, "T23:59:59", selection.to); !status.ok()) return status.error();
  if (selection.from && selection.to && selection.to->timeIntervalSinceDate(*selection.from) < 0) {
    return Error{"--from " + options.from + " is after --to " + options.to, ""};
  }
  return selection;
}

}  // namespace

bool ClipSelection::covers(const DateValue& date) const {
  if (!date) return !from && !to;
  return (!from || date->timeIntervalSinceDate(*from) >= 0) && (!to || date->timeIntervalSinceDate(*to) <= 0);
}

Expected<ClipSelection> parseSelection(const CatalogueCommandOptions& options) {
  if (!selects(options.action)) return ClipSelection{};
  return options.clips.empty() ? parseRange(options) : parseIds(options);
}

}  // namespace zq::host
