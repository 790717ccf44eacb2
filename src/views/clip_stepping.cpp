#include "views/clip_stepping.h"

#include <algorithm>
#include <cstddef>
#include <vector>

namespace zq {
namespace {

using Sequences = std::vector<SequenceValue>;

std::optional<ClipPlace> firstClipFrom(const Sequences& sequences, std::size_t start) {
  for (std::size_t i = start; i < sequences.size(); ++i) {
    const auto& clips = sequences[i]->allClips();
    if (!clips.empty()) return ClipPlace{sequences[i], clips.front()};
  }
  return std::nullopt;
}

std::optional<ClipPlace> lastClipBefore(const Sequences& sequences, std::size_t end) {
  for (std::size_t i = end; i > 0; --i) {
    const auto& clips = sequences[i - 1]->allClips();
    if (!clips.empty()) return ClipPlace{sequences[i - 1], clips.back()};
  }
  return std::nullopt;
}

/// A host may have made the tape's records anew since: then the sequence is known by its id.
std::optional<std::size_t> placeOf(const Sequences& sequences, const SequenceValue& sequence) {
  if (!sequence) return std::nullopt;
  auto found = std::find(sequences.begin(), sequences.end(), sequence);
  if (found == sequences.end()) {
    found = std::find_if(sequences.begin(), sequences.end(),
                         [&](const SequenceValue& one) { return one->sequenceId() == sequence->sequenceId(); });
  }
  if (found == sequences.end()) return std::nullopt;
  return static_cast<std::size_t>(found - sequences.begin());
}

std::optional<ClipPlace> nextClip(const Sequences& sequences, const ClipPlace& from) {
  const std::optional<std::size_t> place = placeOf(sequences, from.sequence);
  if (!place) return firstClipFrom(sequences, 0);
  const auto& clips = sequences[*place]->allClips();
  const auto clip = std::find(clips.begin(), clips.end(), from.clip);
  if (clip == clips.end()) return firstClipFrom(sequences, *place);
  if (clip + 1 != clips.end()) return ClipPlace{sequences[*place], *(clip + 1)};
  return firstClipFrom(sequences, *place + 1);
}

std::optional<ClipPlace> previousClip(const Sequences& sequences, const ClipPlace& from) {
  const std::optional<std::size_t> place = placeOf(sequences, from.sequence);
  if (!place) return lastClipBefore(sequences, sequences.size());
  const auto& clips = sequences[*place]->allClips();
  const auto clip = std::find(clips.begin(), clips.end(), from.clip);
  if (clip == clips.end()) return lastClipBefore(sequences, *place + 1);
  if (clip != clips.begin()) return ClipPlace{sequences[*place], *(clip - 1)};
  return lastClipBefore(sequences, *place);
}

}  // namespace

std::optional<ClipPlace> clipAfterStep(const ZQACTape& tape, const ClipPlace& from, ClipStep step) {
  const Sequences& sequences = tape.allSequences();
  switch (step) {
    case ClipStep::kPrevious:
      return previousClip(sequences, from);
    case ClipStep::kNext:
      return nextClip(sequences, from);
    case ClipStep::kFirst:
      return firstClipFrom(sequences, 0);
    case ClipStep::kLast:
      return lastClipBefore(sequences, sequences.size());
  }
  return std::nullopt;
}

}  // namespace zq
