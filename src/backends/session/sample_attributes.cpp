#include "backends/session/sample_attributes.h"

#include "dv/dv_constants.h"
#include "dv/frame_timecode.h"

namespace zq::backend {

using platform::QTSampleBuffer;
using platform::SceneChangeType;

namespace {

std::int64_t plainCount(const SMPTETime& time, std::int64_t timebase) {
  return ((std::int64_t{time.mHours} * 60 + time.mMinutes) * 60 + time.mSeconds) * timebase + time.mFrames;
}

// Drop-frame counting leaves out two numbers at the start of every minute but each tenth.
std::int64_t dropFrameCount(const SMPTETime& time) {
  const std::int64_t minutes = std::int64_t{time.mHours} * 60 + time.mMinutes;
  return plainCount(time, TIMEBASE_525_60) - 2 * (minutes - minutes / 10);
}

// The numbers that drop-frame counting leaves out.
bool isDropped(const SMPTETime& time) {
  return time.mFrames < 2 && time.mSeconds == 0 && time.mMinutes % 10 != 0;
}

}  // namespace

bool timecodeFollows(const SMPTETime& earlier, const SMPTETime& later, std::int64_t frames) {
  if (earlier.mType != later.mType) return false;
  const bool is625 = later.mType == 1;
  const std::int64_t timebase = is625 ? TIMEBASE_625_50 : TIMEBASE_525_60;
  if (plainCount(later, timebase) - plainCount(earlier, timebase) == frames) return true;
  if (is625 || isDropped(earlier) || isDropped(later)) return false;
  return dropFrameCount(later) - dropFrameCount(earlier) == frames;
}

QTSampleBuffer SampleAttributes::next(const platform::QTFormatDescription& format, const SharedBytes& frame) {
  QTSampleBuffer buffer;
  buffer.formatDescription = format;
  buffer.bytesForAllSamples = frame;
  if (const std::optional<SubcodeTimecode> timecode = firstTimecode(frame)) {
    buffer.smpteTime = valueWithSMPTETime(timecode->time);
    buffer.dropFrame = timecode->dropFrame;
  }
  ++framesSinceKnown_;
  buffer.sceneChangeType = sceneChange(frame.size(), buffer);
  // Across a change of system no timecode follows another, which the change itself says.
  if (buffer.sceneChangeType == SceneChangeType::explicitChange) knownTimecode_ = nullptr;
  previousSize_ = frame.size();
  if (buffer.smpteTime) {
    knownTimecode_ = buffer.smpteTime;
    framesSinceKnown_ = 0;
  }
  return buffer;
}

// A frame that lost its timecode says nothing of how it follows; the next one that has one is measured against the last
// that was known.
SceneChangeType SampleAttributes::sceneChange(std::size_t frameSize, const QTSampleBuffer& buffer) const {
  if (previousSize_ != 0 && frameSize != previousSize_) return SceneChangeType::explicitChange;
  if (!buffer.smpteTime || !knownTimecode_) return SceneChangeType::none;
  return timecodeFollows(*knownTimecode_, *buffer.smpteTime, framesSinceKnown_)
             ? SceneChangeType::none
             : SceneChangeType::timeStampDiscontinuity;
}

}  // namespace zq::backend
