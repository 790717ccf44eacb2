#pragma once
// What the recapture controller tells its host, and asks it.

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "base/calendar_date.h"
#include "timecode/smpte_time.h"

namespace zq {

class ZQACRecaptureController;

/// Told when a clip's recording has reached its end. What is null or absent was not there.
struct RecaptureInfo {
  std::optional<std::string> clipId;
  DateValue clipRecordingDate;
  TimecodeValue clipStartTimecode;
  TimecodeValue clipEndTimecode;
  /// Where the clip's movie, or the alias of it, is found.
  std::optional<std::string> recapturePath;
  /// Where the movie was written.
  std::optional<std::string> moviePath;

  /// The same clip in the same files: dates and timecodes are compared by what they say.
  bool operator==(const RecaptureInfo& other) const;
};

/// The host's answer when a clip is about to be recorded.
struct RecapturePaths {
  std::optional<std::string> moviePath;
};

/// Each operation is optional: an empty one is a delegate that does not answer it.
struct ZQACRecaptureControllerDelegate {
  std::function<void()> acRecaptureControllerDidStartRecapture;
  std::function<void()> acRecaptureControllerDidEndRecapture;
  /// Delivery thread. With a path the movie is written there, and an alias is left at the clip's own path; without an
  /// answer it is written at the clip's own path. Nothing is recorded for a delegate that does not answer this.
  std::function<std::optional<RecapturePaths>(ZQACRecaptureController&)> acRecaptureControllerWillRecord;
  /// Delivery thread; the movie is not complete yet. The file stays open for a delegate that does not answer this.
  std::function<void(ZQACRecaptureController&, const RecaptureInfo&)> acRecaptureControllerDidRecordInfo;
  /// Main thread; the last call of a session, with all clips that this controller recorded.
  std::function<void(ZQACRecaptureController&, const std::vector<RecaptureInfo>&)>
      acRecaptureControllerEndRecordAllClipsInfo;
};

}  // namespace zq
