#include "recapture/positioning.h"

#include "recapture/tape_search.h"
#include "timecode/timecode_utils.h"

namespace zq {
namespace {

// As far as a deck still overshoots in slow reverse play.
constexpr int kSlowFrames = 30;
// As far as normal reverse play is quicker than winding.
constexpr int kNearFrames = 99;

constexpr long kReverse = -10000;
constexpr long kSlowReverse = -7000;

}  // namespace

DeviceAction deviceNextAction(const DateValue& current, const ClipValue& clipToBeRecaptured) {
  const int order = clipToBeRecaptured ? compareDates(current, clipToBeRecaptured->dateStartClip()) : 0;
  if (order < 0) return DeviceAction::forward;
  return order > 0 ? DeviceAction::back : DeviceAction::nothing;
}

int framesFromTo(const TimecodeValue& from, const TimecodeValue& to, int timebase) {
  const TimecodeValue difference = ZQACTimecodeUtils::subTimecodeFromTimecodeWithTimebase(from, to, timebase);
  return ZQACTimecodeUtils::timecodeValueAsFramesWithTimebase(difference, timebase);
}

std::optional<long> speedToBeginning(int framesBehindStart) {
  if (framesBehindStart > kNearFrames) return std::nullopt;
  return framesBehindStart > kSlowFrames ? kReverse : kSlowReverse;
}

bool isNearEnd(int framesToEnd) {
  return framesToEnd <= kNearFrames;
}

}  // namespace zq
