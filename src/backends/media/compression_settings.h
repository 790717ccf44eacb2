#pragma once
// How pictures and sound of a movie are compressed, as chosen.

#include <string>

#include "backends/media/compression_codecs.h"
#include "dv/dv_system.h"

namespace zq::media {

/// In pixels; 0 x 0 is the tape's.
struct PictureSize {
  int width = 0;
  int height = 0;

  bool isTapes() const { return width == 0; }
  bool operator==(const PictureSize&) const = default;
};

struct CompressionSettings {
  /// What the codec has when nothing is said.
  explicit CompressionSettings(const CompressionCodec& chosen)
      : codec(&chosen),
        quality(chosen.quality.standard),
        speed(chosen.standardSpeed),
        scan(chosen.standardScan),
        sound(chosen.standardSound),
        keyframes(chosen.keyframes.standard) {}

  const CompressionCodec* codec;
  int quality;
  std::string speed;
  Scan scan;
  /// Pictures a second; a numerator of 0 for as many as come.
  FrameRate frameRate{};
  SoundCodec sound;
  int keyframes;

  bool operator==(const CompressionSettings&) const = default;
};

}  // namespace zq::media
