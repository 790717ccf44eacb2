#pragma once
// Where the movie file starts and ends: at the armed timecodes.

#include <optional>

#include "platform/sample_buffer.h"
#include "timecode/smpte_time.h"

namespace zq {

class MovieTrigger {
 public:
  void armStart(TimecodeValue start) { start_ = std::move(start); }
  void armEnd(TimecodeValue end) { end_ = std::move(end); }
  const TimecodeValue& start() const { return start_; }
  const TimecodeValue& end() const { return end_; }

  /// The end point, disarmed, when this frame lies behind it: its timecode is later, or it does not follow the frame
  /// before. The scene-change marker catches timecodes that start again at zero.
  TimecodeValue takeEndPassedBy(const platform::QTSampleBuffer& frame);
  /// The start point, disarmed, when this frame has reached it.
  TimecodeValue takeStartReachedBy(const platform::QTSampleBuffer& frame);

 private:
  TimecodeValue start_;
  TimecodeValue end_;
};

/// The frame's timecode; all zero when it carries none.
SMPTETime timecodeOf(const platform::QTSampleBuffer& frame);

}  // namespace zq
