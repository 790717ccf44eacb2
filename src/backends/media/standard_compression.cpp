#include "backends/media/standard_compression.h"

#include <utility>

#include "backends/media/compression_data.h"
#include "backends/media/compression_errors.h"
#include "backends/media/compression_session_options.h"

namespace zq::media {

StandardCompression::StandardCompression(Kind kind, AskForCompression ask, Log& log)
    : kind_(kind), ask_(std::move(ask)), log_(log), settings_(compressionCodecs().front()) {}

/// Encoders always run in a session here, so preferences change nothing.
std::int32_t StandardCompression::setInfo(platform::FourCharCode selector, std::int32_t /*flags*/) {
  return selector == platform::scPreferenceFlagsType ? 0 : kUnknownParameter;
}

std::int32_t StandardCompression::setSettingsFromAtomContainer(std::span<const std::uint8_t> settings) {
  auto read = readCompressionData(settings);
  if (!read.ok()) {
    log_.write(LogLevel::error, read.error().text());
    keepsStored_ = true;
    return kUnreadableSettings;
  }
  settings_ = read.value();
  keepsStored_ = false;
  return 0;
}

std::int32_t StandardCompression::requestImageSettings() {
  if (kind_ != Kind::image) return kUnknownParameter;
  CompressionSettings changed = settings_;
  const std::int32_t answer = ask_ ? ask_(changed) : 0;
  if (answer != 0) return answer;
  settings_ = changed;
  keepsStored_ = false;
  return 0;
}

std::int32_t StandardCompression::getSettingsAsAtomContainer(std::vector<std::uint8_t>& settings) {
  if (keepsStored_) return kUnreadableSettings;
  settings = compressionData(settings_);
  return 0;
}

std::int32_t StandardCompression::copyCompressionSessionOptions(
    std::shared_ptr<platform::ICMCompressionSessionOptions>& options) {
  if (kind_ != Kind::image) return kUnknownParameter;
  options = std::make_shared<CompressionSessionOptions>(settings_);
  return 0;
}

platform::SCSpatialSettings StandardCompression::spatialSettings() const {
  return {settings_.codec->type};
}

platform::SCTemporalSettings StandardCompression::temporalSettings() const {
  constexpr std::int64_t kOne = 1 << 16;
  return {static_cast<std::int32_t>(kOne * settings_.frameRate.numerator / settings_.frameRate.denominator)};
}

}  // namespace zq::media
