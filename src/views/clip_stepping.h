#pragma once
// From one clip of a tape to another, as the keyboard goes.

#include <optional>

#include "catalogue/tape.h"

namespace zq {

struct ClipPlace {
  SequenceValue sequence;
  ClipValue clip;
};

enum class ClipStep { kPrevious, kNext, kFirst, kLast };

/// The first and the last clip are the tape's; the others are counted from `from`, on into the neighbouring sequence
/// that has clips. From no clip, the next one is its sequence's first, and the previous one its last. None where the
/// tape ends.
std::optional<ClipPlace> clipAfterStep(const ZQACTape& tape, const ClipPlace& from, ClipStep step);

}  // namespace zq
