#pragma once
// What a movie file says about its first frame, and the errors that its writers share.

#include <cstddef>
#include <string>

#include "base/calendar_date.h"
#include "base/shared_bytes.h"
#include "base/status.h"
#include "dv/dv_system.h"
#include "platform/sample_buffer.h"

namespace zq::media {

/// "HH:MM:SS:FF", or "HH:MM:SS;FF" when counted drop-frame; empty when the frame has no timecode or one that no clock
/// shows.
std::string movieTimecode(const platform::QTSampleBuffer& frame, DVSystem system);

/// Null when the frame has no recording date or an impossible one.
DateValue movieDate(const SharedBytes& frame);

Error wrongFrameSize(const std::string& path, std::size_t size);

}  // namespace zq::media
