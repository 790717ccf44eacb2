#pragma once
// Knows the tape, and finds what a recapture did wrong with it.

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "simulation/simulation.h"
#include "simulation/spoilt_frames.h"
#include "timecode/timecode_text.h"

namespace zq::test {

class Auditor {
 public:
  Auditor(const SimulationPlan& plan, const Recapture& done) : plan_(plan), done_(done) {}

  /// What is wrong, a line each.
  std::vector<std::string> findings() {
    checkOutcome();
    for (const host::RecapturedClip& entry : done_.outcome.clips) checkClip(entry);
    checkFolder();
    checkCatalogue();
    checkEnd();
    return findings_;
  }

 private:
  using Status = host::RecapturedClip::Status;
  /// Places on the tape: the first frame, and the one behind the last.
  struct Range {
    std::size_t first = 0;
    std::size_t end = 0;
  };

  void found(std::string what) { findings_.push_back(std::move(what)); }
  static std::string nameOf(const host::CatalogueClip& clip) {
    return fmt::format("clip {} ({}, {} to {})", clip.id,
                       clip.recordingDate ? clip.recordingDate->isoString() : "undated",
                       clip.startTimecode ? timecodeText(*clip.startTimecode) : "none",
                       clip.endTimecode ? timecodeText(*clip.endTimecode) : "none");
  }
  static std::vector<host::CatalogueClip> clipsOf(const host::CatalogueTape& tape) {
    std::vector<host::CatalogueClip> clips;
    for (const auto& sequence : tape.sequences) clips.insert(clips.end(), sequence.clips.begin(), sequence.clips.end());
    return clips;
  }

  void checkOutcome() {
    std::map<std::int64_t, int> times;
    for (const host::RecapturedClip& entry : done_.outcome.clips) ++times[entry.clip.id];
    for (const host::CatalogueClip& clip : clipsOf(done_.before)) {
      if (times[clip.id] != (clip.marked ? 1 : 0)) {
        found(fmt::format("{} is {} times in the outcome", nameOf(clip), times[clip.id]));
      }
    }
  }

  void checkClip(const host::RecapturedClip& entry) {
    if (entry.status == Status::waiting) found(nameOf(entry.clip) + " is left waiting");
    if (entry.status == Status::recaptured) return checkRecaptured(entry);
    if (entry.reason.empty()) found(nameOf(entry.clip) + " failed without a reason");
    if (!entry.recapturePath.empty()) found(nameOf(entry.clip) + " failed and has an alias");
    if (!entry.moviePath.empty() && entry.moviePath.find(".wrong") == std::string::npos) {
      found(nameOf(entry.clip) + " failed, and its movie is " + entry.moviePath);
    }
    if (plan_.isStrict() && !done_.outcome.interrupted && isWithoutExcuse(entry.clip)) {
      found(nameOf(entry.clip) + " was not recaptured on a deck without faults: " + entry.reason);
    }
  }

  void checkRecaptured(const host::RecapturedClip& entry) {
    if (plan_.wrongTapeShift != 0) found(nameOf(entry.clip) + " was recaptured from the wrong tape");
    if (!entry.reason.empty()) found(nameOf(entry.clip) + " was recaptured, but: " + entry.reason);
    checkMovie(entry);
    checkAlias(entry);
  }

  void checkMovie(const host::RecapturedClip& entry) {
    const std::string path = done_.folder + "/" + entry.moviePath;
    const std::optional<Range> range = rangeOf(entry.clip);
    if (!range) return found(nameOf(entry.clip) + " was recaptured and is not on the tape");
    std::size_t place = range->first;
    bool right = true;
    const auto read = media::readMovieFrames(path, [&](const SharedBytes& frame) {
      right = right && place < range->end && isFrameAt(place, frame.bytes());
      if (right) ++place;
    });
    if (!read.ok()) return found(read.error().text());
    if (!right)
      found(fmt::format("{}: frame {} of its movie is not the tape's", nameOf(entry.clip), place - range->first));
    if (right && place != range->end) {
      found(fmt::format("{}: its movie has {} frames of {}", nameOf(entry.clip), place - range->first,
                        range->end - range->first));
    }
    if (entry.movieFrames != static_cast<std::int64_t>(range->end - range->first)) {
      found(fmt::format("{}: {} frames are told of, not {}", nameOf(entry.clip), entry.movieFrames,
                        range->end - range->first));
    }
  }

  /// Byte for byte, but for what a fault of the deck spoils.
  bool isFrameAt(std::size_t place, std::span<const std::uint8_t> frame) const {
    const FrameBytes original = frameBytesOf(plan_.tape.frames()[place]);
    if (std::ranges::equal(frame, original)) return true;
    return isSpoilt(frame, original, plan_.deck.faults);
  }

  void checkAlias(const host::RecapturedClip& entry) {
    namespace fs = std::filesystem;
    std::error_code failed;
    const fs::path alias = fs::path(done_.folder) / entry.recapturePath;
    if (entry.recapturePath.empty() || !fs::is_symlink(alias, failed))
      return found(nameOf(entry.clip) + " has no alias");
    if (alias.filename() != std::to_string(entry.clip.id) + ".mov") found(alias.string() + " has the wrong name");
    if (!fs::equivalent(alias, fs::path(done_.folder) / entry.moviePath, failed)) {
      found(alias.string() + " does not lead to " + entry.moviePath);
    }
  }

  void checkFolder() {
    std::set<std::string> known = done_.filesBefore;
    for (const host::RecapturedClip& entry : done_.outcome.clips) known.insert({entry.moviePath, entry.recapturePath});
    const std::set<std::string> there = filesIn(done_.folder);
    for (const std::string& name : there) {
      if (!known.contains(name) && name.find(".wrong") == std::string::npos) found(name + " is left over");
    }
    for (const std::string& name : known) {
      if (!name.empty() && !there.contains(name)) found(name + " is not there");
    }
  }

  void checkCatalogue() {
    std::map<std::int64_t, const host::RecapturedClip*> recaptured;
    for (const host::RecapturedClip& entry : done_.outcome.clips) {
      if (entry.status == Status::recaptured) recaptured[entry.clip.id] = &entry;
    }
    const auto before = clipsOf(done_.before);
    const auto after = clipsOf(done_.after);
    if (before.size() != after.size()) return found("the catalogue has lost or gained clips");
    for (std::size_t i = 0; i < before.size(); ++i) {
      host::CatalogueClip expected = before[i];
      if (const auto entry = recaptured.find(expected.id); entry != recaptured.end()) {
        expected.marked = false;
        expected.recaptured = true;
        expected.recapturedPath = done_.folder + "/" + entry->second->moviePath;
      }
      if (textOf(expected) != textOf(after[i])) {
        found("the catalogue says " + textOf(after[i]) + ", not " + textOf(expected));
      }
    }
  }

  static std::string textOf(const host::CatalogueClip& clip) {
    return fmt::format("{} {} frames {} marked {} recaptured {} trashed {} at \"{}\" from \"{}\"", nameOf(clip),
                       clip.name, clip.movieFrames, clip.marked, clip.recaptured, clip.trashed, clip.recapturedPath,
                       clip.moviePath);
  }

  void checkEnd() {
    const bool cableLost = plan_.deck.faults.cableLostAfterFrames.has_value();
    if (!done_.deckAtEnd && !cableLost) found("the deck does not answer at the end");
    if (done_.deckAtEnd && *done_.deckAtEnd != platform::AVCTransportControls{0, 0}) {
      found(fmt::format("the deck does not stand at the end: mode {} speed {}", done_.deckAtEnd->playbackMode,
                        done_.deckAtEnd->speed));
    }
    const double bound = 3 * static_cast<double>(plan_.tape.frames().size()) / 25 + 600 +
                         120 * static_cast<double>(done_.outcome.clips.size()) + 30;
    if (done_.outcome.tapeSeconds > bound) found(fmt::format("it took {} s of {}", done_.outcome.tapeSeconds, bound));
    if (!done_.mayBeInterrupted && done_.outcome.interrupted) found("it says that it was interrupted");
  }

  /// What a movie of the clip has to hold: by its timecodes, and its date, which is never the same twice on a tape.
  std::optional<Range> rangeOf(const host::CatalogueClip& clip) const {
    if (!clip.recordingDate || !clip.startTimecode || !clip.endTimecode) return std::nullopt;
    const auto& frames = plan_.tape.frames();
    for (std::size_t first = 0; first < frames.size(); ++first) {
      if (!isAt(frames[first], *clip.startTimecode) || !isNear(frames[first], *clip.recordingDate)) continue;
      for (std::size_t end = first; end < frames.size(); ++end) {
        if (isAt(frames[end], *clip.endTimecode)) return Range{first, end};
      }
    }
    return std::nullopt;
  }
  static bool isAt(const FrameRecipe& frame, const SMPTETime& timecode) {
    return frame.timecode && timecodeText(*frame.timecode) == timecodeText(timecode);
  }
  static bool isNear(const FrameRecipe& frame, const CalendarDate& date) {
    return frame.date && std::abs(calendarDateOf(*frame.date).timeIntervalSinceDate(date)) <= 1;
  }

  /// Where the frames at a clip's end have no date, its recording goes on to the next one that has.
  bool isWithoutExcuse(const host::CatalogueClip& clip) const {
    const std::optional<Range> range = rangeOf(clip);
    const bool isLongEnough = range && range->end - range->first + 1 >= 2 * static_cast<std::size_t>(clip.timebase);
    return isLongEnough && plan_.tape.frames()[range->end].date.has_value();
  }

  const SimulationPlan& plan_;
  const Recapture& done_;
  std::vector<std::string> findings_;
};

}  // namespace zq::test
