#pragma once
// The backends that need large libraries (movies, stored settings), in a module that is loaded when a command needs it,
// so that the others start at once.

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/log.h"
#include "base/shared_bytes.h"
#include "base/status.h"
#include "dv/dv_system.h"
#include "dv/frame_stamp.h"
#include "host/catalogue/catalogue_store.h"
#include "platform/movie_writer.h"
#include "platform/runtime.h"
#include "platform/settings.h"
#include "timecode/smpte_time.h"

namespace zq::host {

/// One scene of a tape to make; see the tape maker for what is left out.
struct SceneOrder {
  int frames = 0;
  std::optional<StampDateTime> date;
  std::optional<SMPTETime> timecode;
};

/// What the module offers.
class BackendModule {
 public:
  virtual ~BackendModule() = default;
  /// The user's stored settings.
  virtual std::unique_ptr<platform::Settings> makeUserSettings(platform::Runtime& runtime) = 0;
  virtual std::unique_ptr<platform::MovieWriterFactory> makeMovieWriters(Log& log) = 0;
  virtual Status makeTape(const std::string& path, DVSystem system, const std::vector<SceneOrder>& scenes,
                          const std::function<void(std::int64_t made, std::int64_t inAll)>& progress) = 0;
  /// See the functions of these names beside the store.
  virtual Expected<std::unique_ptr<CatalogueStore>> openCatalogue(const std::string& where, bool create) = 0;
  virtual Expected<ReadableCatalogue> openCatalogueToRead(const std::string& where) = 0;
  /// A DV frame as a small JPEG picture of this aspect-ratio code; see the poster maker.
  virtual Expected<std::vector<std::uint8_t>> makePoster(const SharedBytes& frame, std::int32_t aspectRatio) = 0;
  /// Reads the frames of a movie file back, one after the other.
  virtual Status readMovieFrames(const std::string& path, const std::function<void(const SharedBytes&)>& take) = 0;
};

/// Loads the module from beside the program, or from where it is installed. It stays loaded.
Expected<BackendModule*> loadBackendModule();

}  // namespace zq::host
