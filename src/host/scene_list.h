#pragma once
// The scenes of a tape, cut by the same date rule as a capture.

#include <cstdint>
#include <optional>
#include <vector>

#include "base/calendar_date.h"
#include "host/frame_record.h"

namespace zq::host {

struct TapeScene {
  std::int64_t firstFrame = 0;
  std::int64_t frames = 0;
  /// Of the first and the last frame; nothing where that frame carries none.
  std::optional<SMPTETime> startTimecode;
  std::optional<SMPTETime> endTimecode;
  /// Of the first dated frame.
  DateValue recordingDate;
  std::int32_t aspectRatio = 0;
};

/// One thread at a time; frames in the order of the tape.
class SceneList {
 public:
  void add(const FrameRecord& record);
  const std::vector<TapeScene>& scenes() const { return scenes_; }

 private:
  std::vector<TapeScene> scenes_;
  DateValue currentDate_;
};

}  // namespace zq::host
