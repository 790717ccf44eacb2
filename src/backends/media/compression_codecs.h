#pragma once
// The codecs that a movie can be compressed with, and what can be chosen about each.

extern "C" {
#include <libavutil/pixfmt.h>
}

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/sample_buffer.h"

namespace zq::media {

/// Numbers that a setting can have, and the one that it has when nothing is said.
struct SettingRange {
  int least = 0;
  int most = 0;
  int standard = 0;

  bool isFixed() const { return least == most; }
  bool contains(int value) const { return value >= least && value <= most; }
};

enum class Scan {
  keep,        ///< Both fields in one picture, as on tape.
  deinterlace  ///< A picture for each field.
};

enum class SoundCodec { aac, pcm, flac };

struct CompressionCodec {
  /// How settings name it.
  const char* key;
  /// libavcodec's name of the encoder.
  const char* encoder;
  platform::FourCharCode type;
  /// Extensions without the dot; the first is its own.
  std::vector<std::string> containers;
  SettingRange quality;
  /// Which way is better, for the help.
  const char* qualityMeaning;
  /// What the encoder's time can be chosen from; empty when it cannot.
  std::vector<std::string> speeds;
  const char* standardSpeed;
  /// Pictures from one key frame to the next.
  SettingRange keyframes;
  bool keepsFields;
  Scan standardScan;
  SoundCodec standardSound;
  /// AV_PIX_FMT_NONE takes pictures as the tape's decoder gives them.
  AVPixelFormat pixelFormat;
  /// Black is 0 and white 255, not 16 and 235.
  bool fullRange;
  /// The encoder's, as "KEY=VALUE;..."; {0} is the quality, {1} the speed.
  const char* options;
  /// Those that are added for pictures of two fields.
  const char* fieldOptions;
};

/// In the order in which they are offered.
std::span<const CompressionCodec> compressionCodecs();
/// Null when there is none.
const CompressionCodec* codecWithKey(std::string_view key);
const CompressionCodec* codecWithType(platform::FourCharCode type);

/// "aac", "pcm" or "flac".
const char* keyOf(SoundCodec sound);
/// Where pictures of this codec can go together with such sound, the codec's own first.
std::vector<std::string> containersOf(const CompressionCodec& codec, SoundCodec sound);

}  // namespace zq::media
