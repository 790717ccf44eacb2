#pragma once
// Which way the tape has to go, and how fast, by where it is.

#include <optional>

#include "base/calendar_date.h"
#include "catalogue/clip.h"
#include "timecode/smpte_time.h"

namespace zq {

/// What a deck is told; the numbers are those that the controller remembers its last action by.
enum class DeviceAction : int {
  nothing = 0,
  play = 1,
  stop = 2,
  pause = 3,
  forward = 4,
  stopThenForward = 5,
  back = 6,
  stopThenBack = 7,
};

/// forward while the tape is before the clip, back while it is behind its start, nothing in its first second. Only
/// these three come from here.
DeviceAction deviceNextAction(const DateValue& current, const ClipValue& clipToBeRecaptured);

/// Frames from one timecode to the other, in frames per second of `timebase`; negative backwards. Null counts as zero.
int framesFromTo(const TimecodeValue& from, const TimecodeValue& to, int timebase);

/// The speed at which a tape goes back to the start of the clip that it is in: normal from 31 to 99 frames behind it,
/// half for fewer; none from 100 on, where it keeps its motion.
std::optional<long> speedToBeginning(int framesBehindStart);

/// Whether a tape that comes near the clip that it looks for has to slow down: 99 frames before the end of the clip
/// before it, or fewer.
bool isNearEnd(int framesToEnd);

}  // namespace zq
