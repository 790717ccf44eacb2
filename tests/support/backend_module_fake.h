#pragma once
// A backend module with two presets and settings in memory, whose custom compression knows one key.

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "backends/settings/memory_settings.h"
#include "backends/time/real_runtime.h"
#include "host/backend_module.h"

namespace zq::test {

class FakeBackendModule : public host::BackendModule {
 public:
  std::unique_ptr<platform::Settings> makeUserSettings(platform::Runtime& runtime) override {
    return std::make_unique<backend::MemorySettings>(runtime);
  }
  Status userSettingsStatus(const platform::Settings& /*settings*/) override { return settingsStatus; }
  std::unique_ptr<platform::MovieWriterFactory> makeMovieWriters(Log& /*log*/) override { return nullptr; }
  std::unique_ptr<platform::CompressionPlatform> makeCompression(Log& /*log*/) override { return nullptr; }
  std::vector<host::CompressionPreset> compressionPresets() override { return presets; }

  /// "level=DIGIT" only; the data are the digit.
  Expected<std::vector<std::uint8_t>> makeCustomCompression(const std::vector<std::string>& settings) override {
    std::uint8_t level = '5';
    for (const std::string& setting : settings) {
      if (setting.size() != 7 || !setting.starts_with("level=")) return Error{"no setting " + setting, "level=DIGIT"};
      level = static_cast<std::uint8_t>(setting.back());
    }
    return std::vector<std::uint8_t>{level};
  }
  Expected<host::CustomCompression> readCustomCompression(const std::vector<std::uint8_t>& data) override {
    if (data.size() != 1) return Error{"damaged", "it is no digit"};
    return host::CustomCompression{"own", {"mkv", "mov"}, {std::string("level=") + static_cast<char>(data[0])}, 2};
  }
  std::string customCompressionHelp() override { return ""; }
  Expected<double> measureCompression(const std::shared_ptr<const platform::QTCompressionOptions>& /*options*/,
                                      const std::string& container,
                                      const std::vector<platform::QTSampleBuffer>& frames) override {
    measuredContainer = container;
    measuredFrames = frames.size();
    return speed;
  }
  Status makeTape(const std::string&, DVSystem, const std::vector<host::SceneOrder>&,
                  const std::function<void(std::int64_t, std::int64_t)>&) override {
    return {};
  }
  Expected<std::unique_ptr<host::CatalogueStore>> openCatalogue(const std::string&, bool) override { return kNotHere; }
  Expected<host::ReadableCatalogue> openCatalogueToRead(const std::string&) override { return kNotHere; }
  Expected<std::vector<std::uint8_t>> makePoster(const SharedBytes&, std::int32_t) override { return kNotHere; }
  Status readMovieFrames(const std::string&, const std::function<void(const SharedBytes&)>&) override { return {}; }
  Expected<std::int64_t> countMovieFrames(const std::string&) override { return kNotHere; }

  std::vector<host::CompressionPreset> presets{{"Small Film", "small", "smallcodec", {"mp4", "mov"}, 1},
                                               {"Large Film", "large", "largecodec", {"mov"}, 2}};
  Status settingsStatus;
  Expected<double> speed = 2.0;
  std::string measuredContainer;
  std::size_t measuredFrames = 0;

 private:
  const Error kNotHere{"not here", ""};
};

}  // namespace zq::test
