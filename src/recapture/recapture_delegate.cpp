#include "recapture/recapture_delegate.h"

namespace zq {
namespace {

template <typename Value>
bool saySame(const Value& one, const Value& other) {
  return one == other || (one && other && *one == *other);
}

}  // namespace

bool RecaptureInfo::operator==(const RecaptureInfo& other) const {
  return clipId == other.clipId && saySame(clipRecordingDate, other.clipRecordingDate) &&
         saySame(clipStartTimecode, other.clipStartTimecode) && saySame(clipEndTimecode, other.clipEndTimecode) &&
         recapturePath == other.recapturePath && moviePath == other.moviePath;
}

}  // namespace zq
