#include "backends/media/compression_presets.h"

#include <array>

namespace zq::media {
namespace {

// Identifiers are stored in users' settings: they stay.
constexpr std::array<CompressionPreset, 7> kPresets{{
    {"H.264", "h264", "h264", SoundCodec::aac},
    {"H.265", "h265", "h265", SoundCodec::aac},
    {"ProRes 422", "prores", "prores", SoundCodec::pcm},
    {"FFV1, lossless, FLAC sound", "ffv1", "ffv1", SoundCodec::flac},
    {"FFV1, lossless, PCM sound", "ffv1-pcm", "ffv1", SoundCodec::pcm},
    {"Motion JPEG", "mjpeg", "mjpeg", SoundCodec::pcm},
    {"AV1", "av1", "av1", SoundCodec::aac},
}};

}  // namespace

CompressionSettings CompressionPreset::settings() const {
  CompressionSettings result(*codecWithKey(codec));
  result.sound = sound;
  return result;
}

std::vector<std::string> CompressionPreset::containers() const {
  return containersOf(*codecWithKey(codec), sound);
}

std::span<const CompressionPreset> compressionPresets() {
  return kPresets;
}

}  // namespace zq::media
