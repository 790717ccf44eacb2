#include "host/catalogue_command_show.h"

#include <fmt/format.h>

#include <algorithm>
#include <nlohmann/json.hpp>

#include "host/batch_list_text.h"
#include "host/catalogue_command_json.h"
#include "host/exit_codes.h"
#include "host/text.h"

namespace zq::host {
namespace {

using nlohmann::ordered_json;

constexpr std::size_t kScreenWidth = 80;
constexpr std::string_view kEllipsis = "...";

bool beginsCharacter(char byte) {
  return (static_cast<unsigned char>(byte) & 0xC0) != 0x80;
}

/// The text in one line of at most `width` characters. What is too long loses its beginning: names and paths differ at
/// their end.
std::string fitted(std::string text, std::size_t width) {
  std::ranges::replace_if(
      text, [](unsigned char c) { return c < ' ' || c == 0x7F; }, ' ');
  const auto length = static_cast<std::size_t>(std::ranges::count_if(text, beginsCharacter));
  if (length <= width) return text;
  std::size_t tooMany = length - width + kEllipsis.size();
  const auto keep = std::ranges::find_if(text, [&](char byte) { return beginsCharacter(byte) && tooMany-- == 0; });
  return std::string(kEllipsis) + std::string(keep, text.end());
}

std::string stateOf(const CatalogueClip& clip) {
  std::string state;
  for (const auto& [is, word] :
       {std::pair{clip.marked, "marked"}, {clip.recaptured, "recaptured"}, {clip.trashed, "trashed"}}) {
    if (is) state += state.empty() ? word : std::string(",") + word;
  }
  return state;
}

/// Of the movie; of the timecodes where there is none; "" where neither tells.
std::string framesOf(const CatalogueClip& clip) {
  if (clip.movieFrames > 0) return std::to_string(clip.movieFrames);
  if (!clip.startTimecode || !clip.endTimecode) return "";
  const std::int64_t frames =
      framesTo(*clip.endTimecode, clip.timebase) - framesTo(*clip.startTimecode, clip.timebase) + 1;
  return frames > 0 ? std::to_string(frames) : "";
}

void printFile(const char* what, const std::string& path) {
  if (!path.empty()) fmt::print("{:>10}  {}\n", what, fitted(path, kScreenWidth - 12));
}

void printClip(const CatalogueClip& clip) {
  const std::string row = fmt::format("{:>5}  {:<19}  {:<11}  {:<11}  {:>6}  ", clip.id, textOf(clip.recordingDate),
                                      textOf(clip.startTimecode), textOf(clip.endTimecode), framesOf(clip));
  // Where nothing is to be said at the end, no blanks stand there.
  const std::string line = "|" + row + fitted(stateOf(clip), kScreenWidth - row.size());
  fmt::print("{}\n", trimmed(line).substr(1));
  printFile("name", clip.name);
  printFile("movie", clip.moviePath);
  printFile("thumbnails", clip.thumbnailPath);
  printFile("recaptured", clip.recapturedPath);
}

void printSequence(const CatalogueSequence& sequence) {
  fmt::print("\n{}\n", fitted(fmt::format("sequence {}: {}", sequence.id, sequence.name), kScreenWidth));
  fmt::print("{:>5}  {:<19}  {:<11}  {:<11}  {:>6}  {}\n", "clip", "recorded", "from", "to", "frames", "state");
  for (const CatalogueClip& clip : sequence.clips) printClip(clip);
}

std::int64_t clipCount(const CatalogueTape& tape) {
  std::int64_t count = 0;
  for (const CatalogueSequence& sequence : tape.sequences) count += static_cast<std::int64_t>(sequence.clips.size());
  return count;
}

void printTape(const CatalogueTape& tape) {
  const auto sequences = static_cast<std::int64_t>(tape.sequences.size());
  const std::string counts = fmt::format(": {}, {}", counted(sequences, "sequence"), counted(clipCount(tape), "clip"));
  fmt::print("tape {}{}\n", fitted(tape.name, kScreenWidth - 5 - counts.size()), counts);
  for (const CatalogueSequence& sequence : tape.sequences) printSequence(sequence);
}

ordered_json summaryJson(const TapeSummary& tape) {
  return {{"name", tape.name},     {"sequences", tape.sequences},   {"clips", tape.clips},
          {"marked", tape.marked}, {"recaptured", tape.recaptured}, {"trashed", tape.trashed}};
}

void printSummaries(const std::vector<TapeSummary>& tapes) {
  fmt::print("{:>9}  {:>7}  {:>7}  {:>10}  {:>7}  {}\n", "sequences", "clips", "marked", "recaptured", "trashed",
             "tape");
  for (const TapeSummary& tape : tapes) {
    fmt::print("{:>9}  {:>7}  {:>7}  {:>10}  {:>7}  {}\n", tape.sequences, tape.clips, tape.marked, tape.recaptured,
               tape.trashed, fitted(tape.name, kScreenWidth - 50));
  }
}

}  // namespace

int listTapes(const CatalogueCall& call) {
  return call.read([&](CatalogueStore& store) -> Expected<int> {
    const auto tapes = store.tapes();
    if (!tapes.ok()) return tapes.error();
    if (call.options.json) {
      ordered_json list = ordered_json::array();
      for (const TapeSummary& tape : tapes.value()) list.push_back(summaryJson(tape));
      fmt::print("{}", printedJson({{"tapes", list}}));
    } else {
      printSummaries(tapes.value());
    }
    return kExitOk;
  });
}

int showTape(const CatalogueCall& call) {
  return call.read([&](CatalogueStore& store) -> Expected<int> {
    const auto tape = call.readTape(store);
    if (!tape.ok()) return tape.error();
    if (call.options.json) {
      fmt::print("{}", printedJson(tapeJson(tape.value())));
    } else {
      printTape(tape.value());
    }
    return kExitOk;
  });
}

}  // namespace zq::host
