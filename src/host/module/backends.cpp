// The module's one entry: joins the backends that need large libraries to the host.

#include "backends/media/movie_frames.h"
#include "backends/media/movie_writer_factory.h"
#include "backends/media/poster_maker.h"
#include "backends/media/tape_maker.h"
#include "backends/qt/qt_settings.h"
#include "host/backend_module.h"

namespace zq::host {
namespace {

class Backends : public BackendModule {
 public:
  std::unique_ptr<platform::Settings> makeUserSettings(platform::Runtime& runtime) override {
    return std::make_unique<backend::QtSettings>(runtime);
  }

  std::unique_ptr<platform::MovieWriterFactory> makeMovieWriters(Log& log) override {
    return std::make_unique<media::MovieWriterFactory>(&log);
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
};

}  // namespace
}  // namespace zq::host

extern "C" __attribute__((visibility("default"))) zq::host::BackendModule* deckhandBackendModule() {
  static zq::host::Backends backends;
  return &backends;
}
