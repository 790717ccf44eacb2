#pragma once
// What a controller and its delegate tell each other about one clip.

#include <cstdint>
#include <optional>
#include <string>

#include "base/calendar_date.h"
#include "timecode/smpte_time.h"

namespace zq {

// The keys under which a host stores a clip.
inline constexpr char kZQACClipId[] = "clipId";
inline constexpr char kZQACClipRecordingDate[] = "clipRecordingDate";
inline constexpr char kZQACClipStartTimecode[] = "clipStartTimecode";
inline constexpr char kZQACClipEndTimecode[] = "clipEndTimecode";
inline constexpr char kZQACClipDuration[] = "clipDuration";
inline constexpr char kZQACClipAspectRatio[] = "clipAspectRatio";
inline constexpr char kZQACMoviePath[] = "moviePath";
inline constexpr char kZQACThumbnailsPath[] = "thumbnailPath";
inline constexpr char kZQACRecapturePath[] = "recapturePath";

/// Told when a clip has ended. What is null or absent was not found.
struct ClipInfo {
  std::optional<std::string> clipId;
  DateValue clipRecordingDate;
  TimecodeValue clipStartTimecode;
  /// The timecode of the clip's last frame.
  TimecodeValue clipEndTimecode;
  TimecodeValue clipDuration;
  std::int32_t clipAspectRatio = 0;
};

/// The host's answer when a clip is about to start. Nothing is written where there is no path.
struct ClipPaths {
  std::optional<std::string> clipId;
  std::optional<std::string> moviePath;
  std::optional<std::string> thumbnailPath;
};

}  // namespace zq
