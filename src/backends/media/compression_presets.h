#pragma once
// The ways of writing movies that need no settings of one's own.

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "backends/media/compression_settings.h"

namespace zq::media {

struct CompressionPreset {
  const char* name;
  const char* identifier;
  const char* codec;
  SoundCodec sound;

  /// All but the sound is as the codec has it.
  CompressionSettings settings() const;
  /// Extensions without the dot, its own first.
  std::vector<std::string> containers() const;
};

/// In the order in which they are offered, whether or not this machine has their encoders.
std::span<const CompressionPreset> compressionPresets();

}  // namespace zq::media
