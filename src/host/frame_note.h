#pragma once
// What a DV frame says of itself, kept when its bytes are not.

#include <cstddef>
#include <optional>

#include "base/calendar_date.h"
#include "base/shared_bytes.h"
#include "timecode/smpte_time.h"

namespace zq::host {

struct FrameNote {
  std::size_t bytes = 0;
  std::optional<SMPTETime> timecode;
  DateValue recordingDate;
};

FrameNote noteOf(const SharedBytes& frame);

}  // namespace zq::host
