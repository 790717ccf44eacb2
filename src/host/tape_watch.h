#pragma once
// Watches the tape while a recapture runs: what a user would do who sees that it stands at one of its ends, or that a
// clip does not come.

#include <cstdint>
#include <optional>

#include "platform/capture_device.h"
#include "platform/clock.h"

namespace zq::host {

enum class TapeAdvice {
  none,
  play,
  playBackwards,
  windToBeginning,
  windToEnd,
  /// The tape ends, or begins, without having come to the clip that is looked for.
  giveUpAtEnd,
  giveUpAtBeginning,
  /// No frame had a recording date that the search could begin with.
  giveUpUndated,
  /// The clip is not reached, or the start of its recording does not come.
  giveUpClip,
};

/// Main thread.
class TapeWatch {
 public:
  struct Limits {
    /// For a clip to be reached and recorded.
    platform::Duration clip;
    /// For a recording that was set up to come to its end.
    platform::Duration recording;
  };

  /// What the session is doing.
  struct Session {
    std::int64_t frames = 0;  // delivered so far
    int recordedClips = 0;
    bool sequenceFound = false;
    bool settling = false;
    bool recording = false;
    /// -1 while the tape is before the clip that is looked for, 1 behind its start.
    int place = 0;
  };

  TapeWatch(platform::TimePoint now, const Limits& limits) : limits_(limits), progressAt_(now) {}

  void transportChanged(const platform::AVCTransportControls& controls, platform::TimePoint now);
  /// Called every second or so.
  TapeAdvice look(const Session& session, platform::TimePoint now);

 private:
  enum class End { beginning, end };

  TapeAdvice atEndOfTape(const Session& session);
  TapeAdvice atEndWithoutDate();
  TapeAdvice leave(const Session& session);
  bool isLate(const Session& session, platform::TimePoint now);

  const Limits limits_;
  std::optional<platform::TimePoint> standingSince_;
  long lastSpeed_ = 0;
  bool winds_ = false;  // since the last look
  std::optional<std::int64_t> framesBeforeWind_;
  std::optional<std::int64_t> framesAtLeaving_;
  std::optional<End> leftEnd_;
  bool winding_ = false;
  bool cameFromBeginning_ = false;  // the tape stood there since the session began

  int recordedClips_ = 0;
  platform::TimePoint progressAt_;
  std::optional<platform::TimePoint> recordingSince_;
};

}  // namespace zq::host
