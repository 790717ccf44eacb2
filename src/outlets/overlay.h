#pragma once
// The timecode and recording date that are shown over the picture.

#include "base/calendar_date.h"
#include "timecode/smpte_time.h"

namespace zq::outlets {

/// From any thread.
class TimecodeOverlay {
 public:
  virtual ~TimecodeOverlay() = default;
  virtual void setTimecode(const SMPTETime& timecode) = 0;
  /// Null for no date.
  virtual void setDate(DateValue date) = 0;
  virtual void setHidden(bool hidden) = 0;
};

}  // namespace zq::outlets
