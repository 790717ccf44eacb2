#include "capture/custom_compression.h"

#include <fmt/format.h>

#include <array>
#include <utility>

#include "capture/settings_keys.h"

namespace zq {

using platform::ICMCompressionSessionOptions;
using platform::StandardCompression;

namespace {

constexpr int kScaleToSize = 0;
constexpr platform::FourCharCode kSessionOptionsClass = platform::fourCharCode("icso");
constexpr platform::FourCharCode kSessionOptionsProperty = platform::fourCharCode("imps");
// Loading and saving fail with the same text, and the dialog's failure names the request for sequences: this is what
// those who read the logs know.
constexpr char kSettingsFailed[] = "SCSetSettingsFromAtomContainer() failed with error {}";
constexpr char kRequestFailed[] = "SCRequestSequenceSettings() failed with error {}";
constexpr char kCopyFailed[] = "SCCopyCompressionSessionOptions() failed with error {}";

std::optional<platform::FourCharCode> subTypeFor(const std::string& mediaType) {
  if (mediaType == platform::QTMediaTypeSound) return platform::StandardCompressionSubTypeAudio;
  if (mediaType == platform::QTMediaTypeVideo) return platform::StandardCompressionSubType;
  return std::nullopt;
}

double fix2X(std::int32_t fixed) {
  return static_cast<double>(fixed) / 65536.0;
}

}  // namespace

// 1980 is no slip: movies of that width exist, and the tag keeps meaning it.
FrameSize fitSize(int tag) {
  static constexpr std::array<FrameSize, 5> sizes{{{160, 120}, {320, 240}, {640, 480}, {1280, 720}, {1980, 1080}}};
  if (tag < 0 || tag >= static_cast<int>(sizes.size())) return {};
  return sizes[static_cast<std::size_t>(tag)];
}

CustomCompression::CustomCompression(platform::CompressionPlatform& platform, platform::Settings& store, Log& log)
    : platform_(platform), store_(store), log_(log) {}

std::shared_ptr<ICMCompressionSessionOptions> CustomCompression::userOptionsFrameRateAtomDataAutosaveNameMediaType(
    platform::FourCharCode* codecType, double* frameRate, const std::optional<Data>& atomData,
    const std::string& autosaveName, const std::string& mediaType) const {
  const auto subType = subTypeFor(mediaType);
  if (!subType) {
    log_.write(LogLevel::error, fmt::format("Invalid mediaType {}. Aborting.", mediaType));
    return nullptr;
  }
  const auto component = platform_.openDefaultComponent(platform::StandardCompressionType, *subType);
  if (!component) {
    log_.write(LogLevel::error, "Compression component opening failed");
    return nullptr;
  }
  component->setInfo(platform::scPreferenceFlagsType, platform::scAllowEncodingWithCompressionSession);
  const std::optional<Data> settings = atomData ? atomData : storedData(autosaveName);
  if (settings) load(*component, *settings);
  if (!atomData && !ask(*component)) return nullptr;
  if (!autosaveName.empty()) save(*component, autosaveName);
  std::shared_ptr<ICMCompressionSessionOptions> options;
  if (const std::int32_t error = component->copyCompressionSessionOptions(options); error != 0) {
    log_.write(LogLevel::error, fmt::format(kCopyFailed, error));
    return nullptr;
  }
  if (codecType != nullptr) *codecType = component->spatialSettings().codecType;
  if (frameRate != nullptr) *frameRate = fix2X(component->temporalSettings().frameRate);
  static constexpr std::array<std::uint8_t, 4> kOff{};
  if (options) options->setProperty(kSessionOptionsClass, kSessionOptionsProperty, kOff);
  return options;
}

std::optional<CustomCompression::Data> CustomCompression::storedData(const std::string& name) const {
  if (name.empty()) return std::nullopt;
  const auto stored = store_.objectForKey(name);
  const Data* data = stored ? std::get_if<Data>(&*stored) : nullptr;
  return data != nullptr ? std::optional(*data) : std::nullopt;
}

void CustomCompression::load(StandardCompression& component, const Data& settings) const {
  const std::int32_t error = component.setSettingsFromAtomContainer(settings);
  if (error != 0) log_.write(LogLevel::error, fmt::format(kSettingsFailed, error));
}

/// Whether the user has answered.
bool CustomCompression::ask(StandardCompression& component) const {
  const std::int32_t result = component.requestImageSettings();
  if (result == 0) return true;
  if (result != platform::scUserCancelled) log_.write(LogLevel::error, fmt::format(kRequestFailed, result));
  return false;
}

void CustomCompression::save(StandardCompression& component, const std::string& autosaveName) const {
  Data settings;
  const std::int32_t error = component.getSettingsAsAtomContainer(settings);
  if (error == 0) {
    store_.setObjectForKey(autosaveName, std::move(settings));
  } else {
    log_.write(LogLevel::error, fmt::format(kSettingsFailed, error));
  }
}

void CustomCompression::change() const {
  userOptionsFrameRateAtomDataAutosaveNameMediaType(nullptr, nullptr, std::nullopt, ZQACCaptureCompressionData,
                                                    platform::QTMediaTypeVideo);
}

std::shared_ptr<const platform::QTCompressionOptions> CustomCompression::options(int fitSizeTag) const {
  const FrameSize size = fitSize(fitSizeTag);
  platform::FourCharCode codecType = 0;
  auto session =
      userOptionsFrameRateAtomDataAutosaveNameMediaType(&codecType, nullptr, storedData(ZQACCaptureCompressionData),
                                                        ZQACCaptureCompressionData, platform::QTMediaTypeVideo);
  return platform_.videoCompressionOptions(codecType, kScaleToSize, size.width, size.height, std::move(session));
}

}  // namespace zq
