#pragma once
// Own settings on their way from the standard compression service to the writers.

#include <utility>

#include "backends/media/compression_settings.h"
#include "platform/compression.h"

namespace zq::media {

class CompressionSessionOptions : public platform::ICMCompressionSessionOptions {
 public:
  explicit CompressionSessionOptions(CompressionSettings settings) : settings_(std::move(settings)) {}

  /// Knows one property, a number that says nothing to the encoders here.
  std::int32_t setProperty(platform::FourCharCode propertyClass, platform::FourCharCode property,
                           std::span<const std::uint8_t> value) override;
  const CompressionSettings& settings() const { return settings_; }

 private:
  const CompressionSettings settings_;
};

}  // namespace zq::media
