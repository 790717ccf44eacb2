#pragma once
// The settings of a compression as the data that is stored of them, which later versions can read.

#include <cstdint>
#include <span>
#include <vector>

#include "backends/media/compression_settings.h"
#include "base/status.h"

namespace zq::media {

std::vector<std::uint8_t> compressionData(const CompressionSettings& settings);
/// Damaged data, and data of a later version, is an error that says so.
Expected<CompressionSettings> readCompressionData(std::span<const std::uint8_t> data);

}  // namespace zq::media
