#pragma once
// Writing what a camcorder writes beside picture and sound: block IDs, timecode, recording date and time, aspect ratio.

#include <cstdint>
#include <optional>
#include <span>

#include "dv/dv_constants.h"
#include "dv/dv_system.h"
#include "timecode/smpte_time.h"

namespace zq {

struct StampDateTime {
  int year = 2000;
  int month = 1;
  int day = 1;
  int hours = 0;
  int minutes = 0;
  int seconds = 0;
};

/// Numbers are written as two BCD digits; of the year the last two count.
struct FrameStamp {
  std::optional<SMPTETime> timecode = std::nullopt;
  bool dropFrame = false;
  std::optional<StampDateTime> dateTime = std::nullopt;
  /// 0 writes 16:9, any other code 4:3. None leaves the VAUX packs as they are.
  std::optional<DVAspectRatio> aspect = std::nullopt;
};

/// Makes the buffer a whole frame: a grey picture, 4:3, no sound, no timecode, no date. Its size is that of a 25 Mbit/s
/// frame of the system.
void writeFrameSkeleton(std::span<std::uint8_t> frame, DVSystem system);

/// Fills the subcode of a 25 Mbit/s frame as a camcorder does: the timecode in all of the first half of its sequences;
/// timecode, date and time in turn in the second half. A part that is not set becomes packs without information.
/// Picture and sound blocks are left alone.
void stampFrame(std::span<std::uint8_t> frame, const FrameStamp& stamp);

}  // namespace zq
