#pragma once
// Which codecs this machine can encode with.

#include "backends/media/compression_settings.h"
#include "base/status.h"

namespace zq::media {

/// Why `settings` cannot be used here, or nothing: whether the installed libavcodec has the encoders.
Status checkEncoders(const CompressionSettings& settings);

}  // namespace zq::media
