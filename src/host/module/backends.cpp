// The module's one entry: joins the backends that need large libraries to the host.

#include "backends/media/compression_data.h"
#include "backends/media/compression_measure.h"
#include "backends/media/compression_platform.h"
#include "backends/media/compression_presets.h"
#include "backends/media/compression_text.h"
#include "backends/media/encoder_check.h"
#include "backends/media/movie_count.h"
#include "backends/media/movie_frames.h"
#include "backends/media/movie_writer_factory.h"
#include "backends/media/poster_maker.h"
#include "backends/media/quiet_encoders.h"
#include "backends/media/tape_maker.h"
#include "backends/qt/qt_settings.h"
#include "backends/time/real_runtime.h"
#include "host/backend_module.h"

namespace zq::host {
namespace {

int picturesPerFrame(const media::CompressionSettings& settings) {
  if (settings.frameRate.numerator != 0) return 0;
  return settings.scan == media::Scan::keep ? 1 : 2;
}

class Backends : public BackendModule {
 public:
  std::unique_ptr<platform::Settings> makeUserSettings(platform::Runtime& runtime) override {
    return std::make_unique<backend::QtSettings>(runtime);
  }

  Status userSettingsStatus(const platform::Settings& settings) override {
    const auto* stored = dynamic_cast<const backend::QtSettings*>(&settings);
    return stored != nullptr ? stored->lastError() : Status();
  }

  std::unique_ptr<platform::MovieWriterFactory> makeMovieWriters(Log& log) override {
    return std::make_unique<media::MovieWriterFactory>(&log);
  }

  std::unique_ptr<platform::CompressionPlatform> makeCompression(Log& log) override {
    return std::make_unique<media::CompressionPlatform>(log);
  }

  std::vector<CompressionPreset> compressionPresets() override {
    media::quietEncoders();
    std::vector<CompressionPreset> presets;
    for (const media::CompressionPreset& preset : media::compressionPresets()) {
      const media::CompressionSettings settings = preset.settings();
      if (!media::checkEncoders(settings).ok()) continue;
      presets.push_back(
          {preset.name, preset.identifier, settings.codec->encoder, preset.containers(), picturesPerFrame(settings)});
    }
    return presets;
  }

  Expected<std::vector<std::uint8_t>> makeCustomCompression(const std::vector<std::string>& settings) override {
    media::quietEncoders();
    const auto chosen = media::settingsFromTexts(settings);
    if (!chosen.ok()) return chosen.error();
    Status possible = media::checkEncoders(chosen.value());
    if (!possible.ok()) return possible.error();
    return media::compressionData(chosen.value());
  }

  Expected<CustomCompression> readCustomCompression(const std::vector<std::uint8_t>& data) override {
    const auto settings = media::readCompressionData(data);
    if (!settings.ok()) return settings.error();
    const media::CompressionSettings& chosen = settings.value();
    return CustomCompression{chosen.codec->key, media::containersOf(*chosen.codec, chosen.sound),
                             media::textsOf(chosen), picturesPerFrame(chosen)};
  }

  std::string customCompressionHelp() override { return media::compressionTextHelp(); }

  Expected<double> measureCompression(const std::shared_ptr<const platform::QTCompressionOptions>& options,
                                      const std::string& container,
                                      const std::vector<platform::QTSampleBuffer>& frames) override {
    backend::RealRuntime runtime;
    return media::measureCompression(options, container, frames, runtime.clock());
  }

  Status makeTape(const std::string& path, DVSystem system, const std::vector<SceneOrder>& scenes,
                  const std::function<void(std::int64_t made, std::int64_t inAll)>& progress) override {
    std::vector<media::TapeScene> tapeScenes;
    tapeScenes.reserve(scenes.size());
    for (const SceneOrder& scene : scenes) tapeScenes.push_back({scene.frames, scene.date, scene.timecode, false});
    return media::TapeMaker().make(path, system, tapeScenes, progress);
  }

  Expected<std::unique_ptr<CatalogueStore>> openCatalogue(const std::string& where, bool create) override {
    return host::openCatalogue(where, create);
  }

  Expected<ReadableCatalogue> openCatalogueToRead(const std::string& where) override {
    return host::openCatalogueToRead(where);
  }

  Expected<std::vector<std::uint8_t>> makePoster(const SharedBytes& frame, std::int32_t aspectRatio) override {
    return media::PosterMaker().make(frame, aspectRatio);
  }

  Status readMovieFrames(const std::string& path, const std::function<void(const SharedBytes&)>& take) override {
    return media::readMovieFrames(path, take);
  }

  Expected<std::int64_t> countMovieFrames(const std::string& path) override { return media::countMovieFrames(path); }
};

}  // namespace
}  // namespace zq::host

extern "C" __attribute__((visibility("default"))) zq::host::BackendModule* deckhandBackendModule() {
  static zq::host::Backends backends;
  return &backends;
}
