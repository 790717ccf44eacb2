#pragma once
// Makes tape images: raw DV as a camcorder would have recorded it, for trying things out without a tape.

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "base/status.h"
#include "dv/dv_system.h"
#include "dv/frame_stamp.h"
#include "timecode/smpte_time.h"

namespace zq::media {

/// One recording on the tape.
struct TapeScene {
  int frames = 0;
  /// Of the first frame; the clock runs on with the scene, in whole seconds. None makes an undated recording.
  std::optional<StampDateTime> date;
  /// Of the first frame. None goes on from the scene before; the tape starts at 00:00:00:00.
  std::optional<SMPTETime> timecode;
  bool wideScreen = false;
};

/// Its pictures move, have another colour in each scene, and show the numbers of scene and frame, timecode and date.
/// The sound, 16 bit at 48 kHz, is a tone of each scene's own with a beep each second, in which the picture flashes.
class TapeMaker {
 public:
  using Progress = std::function<void(std::int64_t framesMade, std::int64_t framesInAll)>;

  /// Timecodes count non-drop. An existing file is an error and stays; after any later error no file is left.
  Status make(const std::string& path, DVSystem system, const std::vector<TapeScene>& scenes,
              const Progress& progress = {}) const;
};

}  // namespace zq::media
