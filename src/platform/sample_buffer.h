#pragma once
// One frame on its way from a device to the outputs.

#include <cstdint>
#include <string>

#include "base/shared_bytes.h"
#include "timecode/smpte_time.h"

namespace zq::platform {

/// Media types of format descriptions and connections.
inline constexpr char QTMediaTypeVideo[] = "vide";
inline constexpr char QTMediaTypeSound[] = "soun";
inline constexpr char QTMediaTypeMuxed[] = "muxx";

using FourCharCode = std::uint32_t;

constexpr FourCharCode fourCharCode(const char (&code)[5]) {
  return (static_cast<FourCharCode>(static_cast<unsigned char>(code[0])) << 24) |
         (static_cast<FourCharCode>(static_cast<unsigned char>(code[1])) << 16) |
         (static_cast<FourCharCode>(static_cast<unsigned char>(code[2])) << 8) |
         static_cast<FourCharCode>(static_cast<unsigned char>(code[3]));
}

struct QTFormatDescription {
  std::string mediaType;
  FourCharCode formatType = 0;
};

/// How a frame follows the one before it: its timecode runs on, does not, or the signal system changed.
enum class SceneChangeType { none, timeStampDiscontinuity, explicitChange };

/// Immutable; copies share the frame.
struct QTSampleBuffer {
  QTFormatDescription formatDescription;
  SharedBytes bytesForAllSamples;
  /// The SMPTE time attribute; null when the frame carries no timecode.
  TimecodeValue smpteTime;
  /// 525/60 only: the timecode counts drop-frame.
  bool dropFrame = false;
  SceneChangeType sceneChangeType = SceneChangeType::none;

  std::size_t lengthForAllSamples() const { return bytesForAllSamples.size(); }
};

}  // namespace zq::platform
