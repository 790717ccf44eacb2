#pragma once
// The clip that is being recorded, as far as it is known.

#include <cstdint>
#include <optional>
#include <string>

#include "capture/clip_info.h"

namespace zq {

/// Guarded by its owner's lock.
class CurrentClip {
 public:
  /// A clip opens: its recording date, start and end are not known yet. The duration of the one before stays until an
  /// end is set.
  void begin();
  /// Another end than the held one also sets the duration, end minus start, when there is a start.
  void setEndTimecode(TimecodeValue end);
  ClipInfo info() const;

  std::optional<std::string> clipId;
  DateValue recordingDate;
  TimecodeValue startTimecode;
  TimecodeValue duration;
  std::int32_t aspectRatio = 0;

  const TimecodeValue& endTimecode() const { return endTimecode_; }

 private:
  TimecodeValue endTimecode_;
};

}  // namespace zq
