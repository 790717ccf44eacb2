#pragma once
// The SMPTE timecode record used everywhere, and its boxed form.

#include <cstdint>
#include <memory>

namespace zq {

/// 24 bytes. `mType` is the frame-rate kind: 0 is 24 frames per second, 1 is 25 (what the decoder sets for 625/50), 2
/// is 30 drop-frame (what it sets for 525/60).
struct SMPTETime {
  std::int16_t mSubframes = 0;
  std::int16_t mSubframeDivisor = 0;
  std::uint32_t mCounter = 0;
  std::uint32_t mType = 0;
  std::uint32_t mFlags = 0;
  std::int16_t mHours = 0;
  std::int16_t mMinutes = 0;
  std::int16_t mSeconds = 0;
  std::int16_t mFrames = 0;

  bool operator==(const SMPTETime&) const = default;
};
static_assert(sizeof(SMPTETime) == 24);

/// The empty timecode: every field 0.
inline constexpr SMPTETime nullTimecode{};

/// An immutable boxed timecode, null for "none". Two boxes are the same only when they are one object.
using TimecodeValue = std::shared_ptr<const SMPTETime>;

inline TimecodeValue valueWithSMPTETime(const SMPTETime& time) {
  return std::make_shared<const SMPTETime>(time);
}

}  // namespace zq
