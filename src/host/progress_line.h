#pragma once
// One line on the terminal that says how far a capture is.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "base/calendar_date.h"
#include "platform/clock.h"
#include "timecode/smpte_time.h"

namespace zq::host {

/// How full the queue of frames is that wait to be compressed.
struct QueueProgress {
  std::size_t held = 0;
  std::size_t capacity = 0;
};

struct CaptureProgress {
  TimecodeValue timecode;
  DateValue recordingDate;
  int clip = 0;
  std::int64_t frames = 0;
  std::int64_t dropped = 0;
  double framesPerSecond = 25;  // the tape's own rate
  /// Nothing where movies are written as received.
  std::optional<QueueProgress> queue = std::nullopt;
};

struct RecaptureProgress {
  std::string note;
  TimecodeValue timecode;
  DateValue recordingDate;
  int recaptured = 0;
  int inAll = 0;
  std::optional<QueueProgress> queue = std::nullopt;  // as above
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
