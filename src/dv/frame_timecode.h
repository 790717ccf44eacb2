#pragma once
// The timecode of a frame: that of the first of its sequences that has one.

#include <cstdint>
#include <functional>
#include <optional>

#include "base/shared_bytes.h"
#include "timecode/smpte_time.h"

namespace zq {

struct SubcodeTimecode {
  /// `mType` is 1 for 625/50 and 2 for 525/60.
  SMPTETime time;
  /// The drop-frame bit of the pack; always false for 625/50, where recordings set the bit to no meaning.
  bool dropFrame = false;

  bool operator==(const SubcodeTimecode&) const = default;
};

/// Looks at every whole sequence of the buffer. One that cannot be read, because its number points past the end, is
/// skipped. Never throws for what is in a frame.
/// `beforeSequence` is told of each sequence before it is decoded.
std::optional<SubcodeTimecode> firstTimecode(const SharedBytes& frame,
                                             const std::function<void(std::uint32_t)>& beforeSequence = {});

}  // namespace zq
