#pragma once
// The standard compression service: keeps the user's own settings while they are chosen.

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <vector>

#include "backends/media/compression_settings.h"
#include "base/log.h"
#include "platform/compression.h"

namespace zq::media {

/// Lets the user change the settings: 0, platform::scUserCancelled, or an error's number.
using AskForCompression = std::function<std::int32_t(CompressionSettings& settings)>;

class StandardCompression : public platform::StandardCompression {
 public:
  enum class Kind { image, sound };
  /// `log` outlives this.
  StandardCompression(Kind kind, AskForCompression ask, Log& log);

  std::int32_t setInfo(platform::FourCharCode selector, std::int32_t flags) override;
  std::int32_t setSettingsFromAtomContainer(std::span<const std::uint8_t> settings) override;
  /// After settings that could not be read, nothing is given back until the user has chosen: what a later version
  /// stored is not to be replaced by what this one takes for it.
  std::int32_t getSettingsAsAtomContainer(std::vector<std::uint8_t>& settings) override;
  /// The settings of pictures say those of sound too, so there is no dialog for sound.
  std::int32_t requestImageSettings() override;
  std::int32_t copyCompressionSessionOptions(std::shared_ptr<platform::ICMCompressionSessionOptions>& options) override;
  platform::SCSpatialSettings spatialSettings() const override;
  platform::SCTemporalSettings temporalSettings() const override;

 private:
  const Kind kind_;
  const AskForCompression ask_;
  Log& log_;
  CompressionSettings settings_;
  bool keepsStored_ = false;
};

}  // namespace zq::media
