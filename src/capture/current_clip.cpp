#include "capture/current_clip.h"

#include <utility>

#include "timecode/timecode_utils.h"

namespace zq {

void CurrentClip::begin() {
  recordingDate = nullptr;
  startTimecode = nullptr;
  setEndTimecode(nullptr);
}

void CurrentClip::setEndTimecode(TimecodeValue end) {
  if (end == endTimecode_) return;
  endTimecode_ = std::move(end);
  if (!startTimecode) return;
  duration = ZQACTimecodeUtils::subTimecodeFromTimecodeWithTimebase(startTimecode, endTimecode_, 0);
}

ClipInfo CurrentClip::info() const {
  return {clipId, recordingDate, startTimecode, endTimecode_, duration, aspectRatio};
}

}  // namespace zq
