#include "backends/media/compression_measure.h"

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <system_error>

#include "backends/media/movie_writer_factory.h"
#include "dv/dv_system.h"

namespace zq::media {
namespace {

constexpr char kCannotMeasure[] = "The speed of the compression cannot be measured";

/// Gone with all that is in it.
class TemporaryFolder {
 public:
  TemporaryFolder() : path_(std::filesystem::temp_directory_path() / "deckhand-XXXXXX") {
    if (!mkdtemp(path_.data())) errorNumber_ = errno;
  }
  ~TemporaryFolder() {
    std::error_code ignored;
    if (errorNumber_ == 0) std::filesystem::remove_all(path_, ignored);
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  Status status() const {
    if (errorNumber_ == 0) return {};
    return Error{kCannotMeasure, "No folder can be made in that for temporary files: " +
                                     std::system_category().message(errorNumber_) + "."};
  }
  const std::string& path() const { return path_; }

 private:
  std::string path_;
  int errorNumber_ = 0;
};

Status writeAll(platform::MovieWriter& writer, const std::vector<platform::QTSampleBuffer>& frames) {
  Status result;
  for (auto frame = frames.begin(); result.ok() && frame != frames.end(); ++frame) result = writer.append(*frame);
  Status finished = writer.finish();
  return result.ok() ? finished : result;
}

}  // namespace

Expected<double> measureCompression(const std::shared_ptr<const platform::QTCompressionOptions>& options,
                                    const std::string& container, const std::vector<platform::QTSampleBuffer>& frames,
                                    platform::Clock& clock) {
  const std::optional<DVSystem> system =
      frames.empty() ? std::nullopt : systemOfFrameSize(frames.front().lengthForAllSamples());
  if (!system) return Error{kCannotMeasure, "There are no DV frames to measure with."};
  const TemporaryFolder folder;
  if (!folder.status().ok()) return folder.status().error();
  auto writer = MovieWriterFactory().create(folder.path() + "/measure." + container, options);
  if (!writer.ok()) return writer.error();

  const platform::TimePoint start = clock.now();
  Status written = writeAll(*writer.value(), frames);
  const std::chrono::duration<double> took = clock.now() - start;
  if (!written.ok()) return written.error();
  const FrameRate rate = frameRateOf(*system);
  const double plays = static_cast<double>(frames.size()) * rate.denominator / rate.numerator;
  // A clock that did not move would make it infinitely fast.
  constexpr double kLeastSeconds = 1e-6;
  return plays / std::max(took.count(), kLeastSeconds);
}

}  // namespace zq::media
