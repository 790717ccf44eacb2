#include "capture/movie_trigger.h"

#include <utility>

#include "timecode/timecode_utils.h"

namespace zq {

using platform::QTSampleBuffer;
using platform::SceneChangeType;

SMPTETime timecodeOf(const QTSampleBuffer& frame) {
  return frame.smpteTime ? *frame.smpteTime : nullTimecode;
}

TimecodeValue MovieTrigger::takeEndPassedBy(const QTSampleBuffer& frame) {
  if (!end_) return nullptr;
  const bool later = ZQACTimecodeUtils::timecodeCompareWith(timecodeOf(frame), *end_) > 0;
  if (!later && frame.sceneChangeType == SceneChangeType::none) return nullptr;
  return std::exchange(end_, nullptr);
}

TimecodeValue MovieTrigger::takeStartReachedBy(const QTSampleBuffer& frame) {
  if (!start_ || ZQACTimecodeUtils::timecodeCompareWith(timecodeOf(frame), *start_) < 0) return nullptr;
  return std::exchange(start_, nullptr);
}

}  // namespace zq
