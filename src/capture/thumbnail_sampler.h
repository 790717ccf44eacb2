#pragma once
// Which frames of a clip go to its thumbnails file: the first, one every sampling interval of tape timecode, the last.

#include <optional>
#include <string>

#include "base/shared_bytes.h"
#include "capture/capture_settings.h"
#include "capture/thumbnails_file.h"
#include "timecode/smpte_time.h"

namespace zq {

/// Guarded by its owner's lock.
class ThumbnailSampler {
 public:
  explicit ThumbnailSampler(const CaptureSettings& settings) : settings_(settings) {}

  /// Another path closes the file of the old one, its last frame appended, and creates the new one.
  void setPath(const std::optional<std::string>& path);
  const std::optional<std::string>& path() const { return path_; }

  /// Decides about one frame of the open clip.
  void take(const SharedBytes& frame, const SMPTETime& timecode, bool firstOfClip);
  /// Writes the frame, and sets when the next one is due.
  void addFrame(const SharedBytes& frame, const SMPTETime& timecode);

  void createFile();
  void closeFile();

  /// The last frame that was not written.
  const SharedBytes& lastFrame() const { return lastFrame_; }
  void setLastFrame(const SharedBytes& frame) { lastFrame_ = frame; }
  const TimecodeValue& lastTimecode() const { return lastTimecode_; }
  void setLastTimecode(TimecodeValue timecode) { lastTimecode_ = std::move(timecode); }
  const SMPTETime& nextTimecode() const { return nextTimecode_; }

 private:
  // Constant after construction.
  const CaptureSettings& settings_;

  std::optional<std::string> path_;
  ThumbnailsFile file_;
  SMPTETime nextTimecode_;
  SharedBytes lastFrame_;
  TimecodeValue lastTimecode_;
};

}  // namespace zq
