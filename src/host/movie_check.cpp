#include "host/movie_check.h"

#include <fmt/format.h>

#include <utility>

#include "backends/session/sample_attributes.h"
#include "host/recapture_plan.h"
#include "host/text.h"
#include "timecode/timecode_text.h"
#include "timecode/timecode_utils.h"

namespace zq::host {
namespace {

int compare(const SMPTETime& one, const SMPTETime& other) {
  return ZQACTimecodeUtils::timecodeCompareWith(one, other);
}

/// Whole seconds that `frames` frames last at most; the clock may turn one more while they pass.
double secondsOf(std::int64_t frames, int timebase) {
  const std::int64_t wholeSeconds = frames / timebase;
  return static_cast<double>(wholeSeconds + 1);
}

}  // namespace

void MovieCheck::add(const FrameNote& frame) {
  if (frameSize_ != 0 && frame.bytes != frameSize_) wrong("the tape changes its system in it");
  frameSize_ = frame.bytes;
  if (frame.timecode) checkTimecode(*frame.timecode);
  if (frame.recordingDate) checkDate(frame.recordingDate);
  ++frames_;
}

void MovieCheck::checkTimecode(const SMPTETime& timecode) {
  if (timecode.mType != clip_.startTimecode->mType) {
    const auto systemOf = [](const SMPTETime& time) { return time.mType == 1 ? "625/50" : "525/60"; };
    wrong(fmt::format("it is of {}, and the clip of {}", systemOf(timecode), systemOf(*clip_.startTimecode)));
  }
  if (!lastTimecode_) {
    const bool first = frames_ == 0 ? compare(timecode, *clip_.startTimecode) == 0
                                    : backend::timecodeFollows(*clip_.startTimecode, timecode, frames_);
    if (!first) {
      wrong(fmt::format("it begins at {}, not at the clip's start {}", timecodeText(timecode),
                        timecodeText(*clip_.startTimecode)));
    }
  } else if (const int order = compare(timecode, *lastTimecode_); order <= 0) {
    wrong(fmt::format("at frame {} its timecode {} {}", frames_, order == 0 ? "repeats" : "goes back to",
                      timecodeText(timecode)));
  } else if (!backend::timecodeFollows(*lastTimecode_, timecode, frames_ - lastTimecodeFrame_)) {
    timecodeJumped_ = true;
    // A jump that was on the tape when the clip was captured is no fault of the movie's; the number of frames tells.
    if (clip_.movieFrames == 0) wrong(fmt::format("frames are missing before its timecode {}", timecodeText(timecode)));
  }
  lastTimecode_ = timecode;
  lastTimecodeFrame_ = frames_;
}

void MovieCheck::checkDate(const DateValue& date) {
  const DateValue& before = lastDate_ ? lastDate_ : clip_.recordingDate;
  const double step = date->timeIntervalSinceDate(*before);
  // A date that was worked out from timecodes may be a second beside the tape's.
  const double back = lastDate_ ? 0 : -1;
  if (step < back || step > secondsOf(frames_ - lastDateFrame_, clip_.timebase)) {
    wrong(fmt::format("at frame {} its recording date {} is not that of the clip", frames_, textOf(date)));
  }
  lastDate_ = date;
  lastDateFrame_ = frames_;
}

void MovieCheck::wrong(std::string what) {
  if (wrong_.empty()) wrong_ = std::move(what);
}

std::string MovieCheck::verdict() const {
  if (!wrong_.empty()) return wrong_;
  if (frames_ == 0) return "it has no frames";
  if (!lastTimecode_) return "none of its frames has a timecode";
  if (timecodeJumped_ && frames_ != clip_.movieFrames - 1) {
    return fmt::format("it has {} where the clip had {} before its last frame", counted(frames_, "frame"),
                       clip_.movieFrames - 1);
  }
  if (endsRight()) return "";
  return fmt::format("it ends after {}, not before the clip's end {}", timecodeText(*lastTimecode_),
                     timecodeText(*clip_.endTimecode));
}

bool MovieCheck::endsRight() const {
  const std::int64_t untimed = frames_ - 1 - lastTimecodeFrame_;
  if (isFromList(clip_)) return backend::timecodeFollows(*lastTimecode_, *clip_.endTimecode, untimed);
  return backend::timecodeFollows(*lastTimecode_, *clip_.endTimecode, untimed + 1);
}

}  // namespace zq::host
