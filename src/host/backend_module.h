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
#include "platform/compression.h"
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

/// A way of writing movies that this machine's encoders can do.
struct CompressionPreset {
  std::string name;        // "H.264"
  std::string identifier;  // what the settings and the platform know it by
  std::string codec;       // the encoder, by libavcodec's name
  /// Extensions without the dot; the first is the one it is meant for.
  std::vector<std::string> containers;
  /// Twice as many as frames came, where each field becomes a picture.
  int picturesPerFrame = 1;
};

/// What the settings of "Custom..." say.
struct CustomCompression {
  std::string codec;
  std::vector<std::string> containers;  // as above
  std::vector<std::string> settings;    // "KEY=VALUE", all of them
  int picturesPerFrame = 1;             // as above; 0 when settings of a frame rate let it vary
};

/// What the module offers.
class BackendModule {
 public:
  virtual ~BackendModule() = default;
  /// The user's stored settings.
  virtual std::unique_ptr<platform::Settings> makeUserSettings(platform::Runtime& runtime) = 0;
  /// Of what makeUserSettings() made: how the last write went; before the first one, whether all could be read.
  virtual Status userSettingsStatus(const platform::Settings& settings) = 0;
  virtual std::unique_ptr<platform::MovieWriterFactory> makeMovieWriters(Log& log) = 0;
  /// `log` outlives it. Asked for settings, it answers with those that it was given, there being nobody to ask.
  virtual std::unique_ptr<platform::CompressionPlatform> makeCompression(Log& log) = 0;
  virtual std::vector<CompressionPreset> compressionPresets() = 0;
  /// The data that is stored for "Custom...", from "KEY=VALUE" texts; what is not said is as its codec has it.
  virtual Expected<std::vector<std::uint8_t>> makeCustomCompression(const std::vector<std::string>& settings) = 0;
  virtual Expected<CustomCompression> readCustomCompression(const std::vector<std::uint8_t>& data) = 0;
  /// How a table of the keys and values of custom settings reads, for --help.
  virtual std::string customCompressionHelp() = 0;
  /// How many times as fast as they play `frames` are encoded here, alone on this machine.
  virtual Expected<double> measureCompression(const std::shared_ptr<const platform::QTCompressionOptions>& options,
                                              const std::string& container,
                                              const std::vector<platform::QTSampleBuffer>& frames) = 0;
  virtual Status makeTape(const std::string& path, DVSystem system, const std::vector<SceneOrder>& scenes,
                          const std::function<void(std::int64_t made, std::int64_t inAll)>& progress) = 0;
  /// See the functions of these names beside the store.
  virtual Expected<std::unique_ptr<CatalogueStore>> openCatalogue(const std::string& where, bool create) = 0;
  virtual Expected<ReadableCatalogue> openCatalogueToRead(const std::string& where) = 0;
  /// A DV frame as a small JPEG picture of this aspect-ratio code; see the poster maker.
  virtual Expected<std::vector<std::uint8_t>> makePoster(const SharedBytes& frame, std::int32_t aspectRatio) = 0;
  /// Reads the frames of a movie file back, one after the other.
  virtual Status readMovieFrames(const std::string& path, const std::function<void(const SharedBytes&)>& take) = 0;
  /// The pictures in a finished movie file, whatever its compression.
  virtual Expected<std::int64_t> countMovieFrames(const std::string& path) = 0;
};

/// Loads the module from beside the program, or from where it is installed. It stays loaded.
Expected<BackendModule*> loadBackendModule();

}  // namespace zq::host
