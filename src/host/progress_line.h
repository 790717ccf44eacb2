#pragma once
// One line on the terminal that says how far a capture is.

#include <cstdint>
#include <string>

#include "base/calendar_date.h"
#include "platform/clock.h"
#include "timecode/smpte_time.h"

namespace zq::host {

struct CaptureProgress {
  TimecodeValue timecode;
  DateValue recordingDate;
  int clip = 0;
  std::int64_t frames = 0;
  std::int64_t dropped = 0;
  double framesPerSecond = 25;  // the tape's own rate
};

struct RecaptureProgress {
  std::string note;
  TimecodeValue timecode;
  DateValue recordingDate;
  int recaptured = 0;
  int inAll = 0;
};

/// Silent unless standard error is a terminal.
class ProgressLine {
 public:
  /// `wall` is the time that the user sees pass.
  explicit ProgressLine(platform::Clock& wall);
  ~ProgressLine() { clear(); }

  void show(const CaptureProgress& progress);
  void show(const RecaptureProgress& progress);
  /// Leaves an empty line for what is said next.
  void clear();

 private:
  platform::Clock& wall_;
  const bool onTerminal_;
  const platform::TimePoint start_;
  bool shown_ = false;
};

}  // namespace zq::host
