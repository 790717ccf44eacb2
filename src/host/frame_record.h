#pragma once
// What one frame of a tape image is.

#include <cstdint>
#include <optional>

#include "base/calendar_date.h"
#include "dv/dv_system.h"
#include "host/tape_findings.h"
#include "timecode/smpte_time.h"

namespace zq::host {

struct FrameRecord {
  std::int64_t frame = 0;
  std::uint64_t offset = 0;  // bytes from the start of the file
  DVSystem system = DVSystem::pal625_50;
  std::optional<SMPTETime> timecode;
  DateValue recordingDate;
  std::int32_t aspectRatio = 0;
  FrameFacts facts;
};

}  // namespace zq::host
