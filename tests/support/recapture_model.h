#pragma once
// The rules of a recapture once more, told straight from top to bottom and sharing no code with the controller. Dates
// are seconds, timecodes counts of 625/50 frames, clips and sequences numbers from 0; -1 is none.

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "support/recapture_model_state.h"

namespace zq::test {

class RecaptureModel : public ModelState {
 public:
  explicit RecaptureModel(ModelTape given) {
    tape = std::move(given);
    for (const ModelClip& clip : tape.clips) left += clip.marked ? 1 : 0;
    marked_ = left;
  }

  void frame(std::uint32_t id, std::optional<int> timecode, std::optional<int> date) {
    if (!done && !prerolling && timecode && date) decide(*timecode, *date);
    if (writing_) movies[*writing_].push_back(id);
  }

  void startButton() {
    started = !started;
    say(started ? "delegate: did start" : "delegate: did end");
    if (!started) {
      watchesRewind_ = false;
      stop();
      if (moviePath) say("files: remove " + *moviePath);
      note = "";
      alert("Recapture has been canceled!", "You have lost the recapture of the last clip.");
    } else if (left == 0) {
      stop();
      alert("There is no clip to be recaptured in current tape!", "Please select another tape.");
    } else {
      if (modeTag != 0) {
        note = "Recapture is started in manuel mode";
        command(1, 10000);
      } else {
        note = "Recapture is started in automatic mode";
        stop();
        command(mode, -13000);
        watchesRewind_ = true;
      }
      requested = false;
      hasThread_ = true;
    }
  }

  void open() { done = false; }

  /// The deck does something by itself, and says so.
  void deckTurns(long newMode, long newSpeed) {
    mode = newMode;
    speed = newSpeed;
    deckChanged();
  }

  void fileFinished() {
    if (!leavesAlias_ || !moviePath) return;
    say("files: alias of " + *moviePath);
    if (current >= 0) say("files: write alias " + ownPath());
    startAt = endAt = std::nullopt;
    if (!recording) return;
    recording = false;
    moviePath = std::nullopt;
  }

  /// The main thread is free, and time passes.
  void rest(int milliseconds) {
    for (; reports_ > 0; --reports_) {
      note = "END";
      say("delegate: end record of " + std::to_string(infos_.size()));
    }
    pass(milliseconds);
  }

 private:
  void say(const std::string& line) { lines.push_back(line); }
  const ModelClip& clip(int number) const { return tape.clips.at(static_cast<std::size_t>(number)); }
  ModelSequence& found() { return tape.sequences.at(static_cast<std::size_t>(sequence)); }
  std::string ownPath() const { return "/recaptures/" + clip(current).id + ".mov"; }

  bool winds(long sign) const {
    for (const long each : {1000, 4000, 7000, 13000, 16000, 19000}) {
      if (controllable && speed == sign * each) return true;
    }
    return controllable && sign < 0 && speed == -10000;
  }
  bool plays() const { return controllable && mode == 1 && speed == 10000; }

  void command(long newMode, long newSpeed) {
    if (!controllable) return;
    say("device: mode " + std::to_string(newMode) + " speed " + std::to_string(newSpeed));
    mode = newMode;
    speed = newSpeed;
    deckChanged();
  }
  void deckChanged() {
    if (!watchesRewind_ || done || speed != 0) return;
    note = "camera is searching right sequence of the clip being recaptured";
    command(1, 10000);
    watchesRewind_ = false;
  }
  void stop() {
    if (!controllable) return;
    command(0, 0);
    action_ = 0;
  }

  void pass(int milliseconds) {
    const int until = now_ + milliseconds;
    if (requested && hasThread_) {
      requested = false;
      startAt = endAt = std::nullopt;
      if (!recording) {
        prerolling = true;
        prerollEnds_ = controllable ? now_ + 4000 : now_;
        command(1, -10000);
      }
    }
    if (prerolling && prerollEnds_ <= until) {
      command(1, 10000);
      startAt = endAt = std::nullopt;
      if (target >= 0) {
        startAt = clip(target).firstTimecode;
        endAt = clip(target).lastTimecode;
      }
      prerolling = false;
      recording = true;
    }
    now_ = until;
  }

  void seek() {
    stop();
    command(mode, 13000);
    pass(4000);
    command(1, 10000);
    note = "Searching....";
  }

  void alert(const std::string& message, const std::string& more) {
    say("alert: " + message);
    informative.push_back(more);
    if (alertAnswer != 1) return;
    settled = 0;
    started = false;
    say("delegate: did end");
    sequence = -1;
    ++reports_;
  }

  static std::string counts(int all, int failed) {
    return std::to_string(all - failed) + " clip recaptured - " + std::to_string(failed) + " failed";
  }

  int next() {
    if (sequence < 0) return -1;
    for (const int number : found().clips) {
      if (clip(number).marked && !clip(number).finished) return number;
    }
    found().recaptured = true;
    if (modeTag == 1) {
      const int all = found().marked;
      stop();
      done = true;
      stop();
      alert("Recapture done in current sequence, please move the tape to another position",
            counts(all, leftInSequence));
      return -1;
    }
    sequence = -1;
    if (target >= 0 && clip(target).last) {
      stop();
      alert("Recapture done in current tape, please select another tape", counts(marked_, left));
    } else {
      seek();
    }
    return -1;
  }

  void search(int date) {
    note = "Searching sequence";
    for (std::size_t i = 0; i < tape.sequences.size(); ++i) {
      const ModelSequence& one = tape.sequences[i];
      if (one.recaptured || date < one.firstDate || date > one.lastDate) continue;
      sequence = static_cast<int>(i);
      settled = 0;
      leftInSequence = one.marked;
      return;
    }
    if (modeTag != 0) {
      if (!plays()) return;
      stop();
      alert("There is no sequence to be recaptured in this position!", "Please move the tape to another position.");
    } else if (misses_ == 13) {
      misses_ = 0;
      seek();
    } else {
      ++misses_;
    }
  }

  void decide(int timecode, int date) {
    if (sequence < 0) return search(date);
    for (const int number : found().clips) {
      if (number == current || date < clip(number).firstDate || date > clip(number).lastDate) continue;
      current = number;
      break;
    }
    target = next();
    if (settled < 251) {
      if (settled < 170 && !plays()) command(1, 10000);
      if (settled >= 170 && !winds(-1)) command(mode, -13000);
      ++settled;
    } else if (recording) {
      note = "Recapturing";
      cutMovie(timecode);
    } else {
      position(timecode, date);
    }
  }

  void position(int timecode, int date) {
    const bool inside = current == target;
    if (inside) {
      if (winds(1)) command(1, 10000);
      adjust(timecode);
    } else {
      const int wanted = target < 0 || date == clip(target).firstDate ? 0 : date < clip(target).firstDate ? 4 : 6;
      if (wanted != action_ && wanted == 4 && !winds(1)) command(mode, 13000);
      if (wanted != action_ && wanted == 6 && !winds(-1)) command(mode, -13000);
      action_ = wanted;
    }
    const bool isBefore = sequence >= 0 && target >= 0 && clip(target).place > 0 &&
                          found().clips[static_cast<std::size_t>(clip(target).place) - 1] == current;
    if (isBefore && controllable && clip(current).lastTimecode - timecode < 100) command(1, 10000);
    const bool there =
        inside && (target < 0 || timecode == clip(target).firstTimecode || date <= clip(target).firstDate);
    note = there ? "Clip found, camera will start recapture"
                 : "Sequence found, camera is now searching the clip to be recaptured";
    if (!there) return;
    requested = true;
    action_ = 0;
  }

  void adjust(int timecode) {
    if (!controllable || winds(1)) return;
    const int behind = timecode - (current < 0 ? 0 : clip(current).firstTimecode);
    if (behind < 31) command(1, -7000);
    if (behind >= 31 && behind < 100) command(1, -10000);
  }

  void cutMovie(int timecode) {
    if (startAt && timecode >= *startAt) {
      if (timecode - *startAt >= 5 || !answersWill) return;
      note = "START";
      say("delegate: will record");
      ++begun_;
      leavesAlias_ = answer != ModelAnswer::nothing;
      moviePath = ownPath();
      if (answer == ModelAnswer::noPath) moviePath = std::nullopt;
      if (answer == ModelAnswer::path) moviePath = "/movies/" + std::to_string(begun_) + ".mov";
      writing_ = moviePath;
      say("movie: " + moviePath.value_or("none"));
      startAt = std::nullopt;
    } else if (endAt && timecode >= *endAt && answersDid) {
      say("delegate: did record " + clip(current).id);
      infos_.insert({current, moviePath.value_or("")});
      say("movie: none");
      writing_ = std::nullopt;
      endAt = std::nullopt;
      if (target >= 0) tape.clips[static_cast<std::size_t>(target)].finished = true;
      --left;
      --leftInSequence;
      target = next();
    }
  }

  int marked_ = 0;
  int action_ = 0;
  int misses_ = 0;
  int now_ = 0;  // milliseconds
  int prerollEnds_ = 0;
  int begun_ = 0;
  int reports_ = 0;
  bool hasThread_ = false;
  bool watchesRewind_ = false;
  bool leavesAlias_ = false;
  std::optional<std::string> writing_;
  std::set<std::pair<int, std::string>> infos_;
};

}  // namespace zq::test
