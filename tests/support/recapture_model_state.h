#pragma once
// A tape, and the state of a recapture, as the model knows them. Dates are seconds, timecodes counts of 625/50 frames.

#include <algorithm>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "support/recapture_tape.h"

namespace zq::test {

struct ModelClip {
  std::string id;
  int firstDate = 0, lastDate = 0;
  int firstTimecode = 0, lastTimecode = 0;
  int place = 0;
  bool marked = false, last = false, finished = false;
};

struct ModelSequence {
  std::vector<int> clips;
  int firstDate = 0, lastDate = 0;
  int marked = 0;
  bool recaptured = false;
};

struct ModelTape {
  std::vector<ModelClip> clips;
  std::vector<ModelSequence> sequences;
};

inline ModelTape modelOf(const std::vector<std::vector<ClipPlan>>& sequences) {
  ModelTape tape;
  for (const auto& plans : sequences) {
    ModelSequence sequence;
    sequence.firstDate = 1000000;
    sequence.lastDate = -1000000;
    for (const ClipPlan& plan : plans) {
      ModelClip clip;
      clip.place = static_cast<int>(sequence.clips.size());
      clip.id = std::to_string(tape.sequences.size() + 1) + "-" + std::to_string(clip.place + 1);
      clip.firstDate = plan.date;
      clip.lastDate = plan.date + (plan.frames - 1) / 25;
      clip.firstTimecode = plan.timecode;
      clip.lastTimecode = plan.timecode + plan.frames - 1;
      clip.marked = plan.recapture;
      sequence.firstDate = std::min(sequence.firstDate, clip.firstDate);
      sequence.lastDate = std::max(sequence.lastDate, clip.lastDate);
      sequence.marked += clip.marked ? 1 : 0;
      sequence.clips.push_back(static_cast<int>(tape.clips.size()));
      tape.clips.push_back(clip);
    }
    tape.sequences.push_back(sequence);
  }
  for (std::size_t i = tape.clips.size(); i-- > 0;) {
    if (!tape.clips[i].marked) continue;
    tape.clips[i].last = true;
    break;
  }
  return tape;
}

enum class ModelAnswer { path, noPath, nothing };

/// -1 is no clip, and no sequence.
struct ModelState {
  // What surrounds it.
  ModelTape tape;
  long mode = 0, speed = 0;
  bool controllable = true;
  int alertAnswer = 1;
  int modeTag = 0;
  bool answersWill = true, answersDid = true;
  ModelAnswer answer = ModelAnswer::path;

  // Where it stands.
  std::string note;
  int sequence = -1, current = -1, target = -1;
  bool started = false, recording = false, prerolling = false, done = false;
  int settled = 0, left = 0, leftInSequence = 0;
  std::optional<int> startAt, endAt;
  std::optional<std::string> moviePath;
  bool requested = false;

  // What came of it.
  std::vector<std::string> lines;
  std::vector<std::string> informative;
  std::map<std::string, std::vector<std::uint32_t>> movies;
};

}  // namespace zq::test
