#include "backends/media/compression_platform.h"

#include <fmt/format.h>

#include <utility>

#include "backends/media/compression_session_options.h"
#include "backends/media/encoder_check.h"
#include "backends/media/movie_compression.h"
#include "backends/media/quiet_encoders.h"

namespace zq::media {
namespace {

constexpr char kCustomName[] = "Custom";
constexpr int kSmallestSide = 64;
constexpr int kLargestSide = 4096;

bool isSide(int pixels) {
  // Chroma has half as many.
  return pixels >= kSmallestSide && pixels <= kLargestSide && pixels % 2 == 0;
}

std::string codeText(platform::FourCharCode code) {
  std::string text;
  for (int shift = 24; shift >= 0; shift -= 8) {
    const auto character = static_cast<unsigned char>(code >> shift & 0xFF);
    text += character >= ' ' && character <= '~' ? static_cast<char>(character) : '?';
  }
  return text;
}

}  // namespace

CompressionPlatform::CompressionPlatform(Log& log, AskForCompression ask) : log_(log), ask_(std::move(ask)) {
  quietEncoders();
}

std::vector<std::string> CompressionPlatform::compressionOptionsIdentifiersForMediaType(const std::string& mediaType) {
  std::vector<std::string> identifiers;
  if (mediaType != platform::QTMediaTypeVideo) return identifiers;
  for (const CompressionPreset& preset : compressionPresets()) {
    if (checkEncoders(preset.settings()).ok()) identifiers.emplace_back(preset.identifier);
  }
  return identifiers;
}

std::shared_ptr<const platform::QTCompressionOptions> CompressionPlatform::compressionOptionsWithIdentifier(
    const std::string& identifier) {
  if (const auto found = presets_.find(identifier); found != presets_.end()) return found->second;
  for (const CompressionPreset& preset : compressionPresets()) {
    if (preset.identifier != identifier || !checkEncoders(preset.settings()).ok()) continue;
    auto options =
        std::make_shared<MovieCompression>(preset.name, preset.settings(), PictureSize{}, preset.containers());
    return presets_.emplace(identifier, std::move(options)).first->second;
  }
  return nullptr;
}

std::unique_ptr<platform::StandardCompression> CompressionPlatform::openDefaultComponent(
    platform::FourCharCode type, platform::FourCharCode subType) {
  if (type != platform::StandardCompressionType) return nullptr;
  if (subType == platform::StandardCompressionSubType) {
    return std::make_unique<StandardCompression>(StandardCompression::Kind::image, ask_, log_);
  }
  if (subType == platform::StandardCompressionSubTypeAudio) {
    return std::make_unique<StandardCompression>(StandardCompression::Kind::sound, ask_, log_);
  }
  return nullptr;
}

std::shared_ptr<const platform::QTCompressionOptions> CompressionPlatform::videoCompressionOptions(
    platform::FourCharCode codecType, int /*sizeMode*/, int width, int height,
    std::shared_ptr<platform::ICMCompressionSessionOptions> compressionSessionOptions) {
  const auto* own = dynamic_cast<const CompressionSessionOptions*>(compressionSessionOptions.get());
  if (!own)
    return std::make_shared<MovieCompression>(kCustomName, std::nullopt, PictureSize{}, std::vector<std::string>{});
  const bool tapeSize = width == 0 && height == 0;
  if (!tapeSize && !(isSide(width) && isSide(height))) {
    log_.write(LogLevel::error,
               fmt::format("Movies cannot have pictures of {} x {}. Both numbers are even, and from {} "
                           "to {}; 0 x 0 keeps the tape's size.",
                           width, height, kSmallestSide, kLargestSide));
    return nullptr;
  }
  const CompressionSettings& settings = own->settings();
  if (settings.codec->type != codecType) {
    log_.write(LogLevel::warning,
               fmt::format("The compression was asked for as '{}', but its settings are those of {}, "
                           "which is used.",
                           codeText(codecType), settings.codec->key));
  }
  return std::make_shared<MovieCompression>(kCustomName, settings, PictureSize{width, height},
                                            containersOf(*settings.codec, settings.sound));
}

}  // namespace zq::media
