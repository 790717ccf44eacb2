#include "backends/media/movie_writer_factory.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <utility>
#include <vector>

#include "backends/media/av_encoder.h"
#include "backends/media/container_writer.h"
#include "backends/media/encoded_tracks.h"
#include "backends/media/movie_compression.h"
#include "backends/media/output_file.h"
#include "backends/media/quiet_encoders.h"
#include "backends/media/raw_writer.h"
#include "backends/media/received_tracks.h"

namespace zq::media {
namespace {

constexpr char kRaw[] = "dv";

/// Lower case, without the dot; only ASCII, since no extension that is looked for has anything else.
std::string extensionOf(const std::string& path) {
  std::string extension = std::filesystem::path(path).extension().string();
  std::transform(extension.begin(), extension.end(), extension.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
  return extension.empty() ? extension : extension.substr(1);
}

/// libavformat's names of the containers.
const std::map<std::string, std::string>& formatNames() {
  static const std::map<std::string, std::string> names{
      {"mov", "mov"}, {"avi", "avi"}, {"mkv", "matroska"}, {"mp4", "mp4"}, {"dv", kRaw}};
  return names;
}

Error cannotCreate(const std::string& path, std::string why) {
  return Error{fmt::format("Cannot create \"{}\"", path), std::move(why)};
}

Error unknownCompression(const std::string& path, const std::string& name) {
  return cannotCreate(path,
                      fmt::format("Its compression \"{}\" is none that movies can be written with. Choose another "
                                  "one.",
                                  name));
}

Error wrongContainer(const std::string& path, const std::string& extension, const MovieCompression& compression) {
  return cannotCreate(
      path, fmt::format("A .{} file cannot hold what the compression \"{}\" writes. Use .{}, or choose "
                        "another compression.",
                        extension, compression.localizedDisplayName(), fmt::join(compression.containers(), ", .")));
}

Status checkReceived(const std::string& path, const std::string& extension) {
  if (extension != "mp4") return {};
  return cannotCreate(path,
                      "A .mp4 file cannot hold DV as received. Use .mov, .avi, .mkv or .dv, or choose a "
                      "compression.");
}

Status checkCompressed(const std::string& path, const std::string& extension, const MovieCompression& compression) {
  if (std::ranges::find(compression.containers(), extension) == compression.containers().end()) {
    return wrongContainer(path, extension, compression);
  }
  Status there = AvEncoder::find(compression.settings()->codec->encoder);
  return there.ok() ? Status() : Status(cannotCreate(path, there.error().text()));
}

ContainerWriter::MakeTracks makerOfTracks(const MovieCompression* compression, Log* log) {
  if (!compression) {
    return [](const std::string&, AvMuxer& muxer) { return std::make_unique<ReceivedTracks>(muxer); };
  }
  return
      [settings = *compression->settings(), size = compression->size(), log](const std::string& path, AvMuxer& muxer) {
        return std::make_unique<EncodedTracks>(path, muxer, settings, size, log);
      };
}

}  // namespace

MovieWriterFactory::MovieWriterFactory(Log* log) : log_(log) {
  quietEncoders();
}

Expected<std::unique_ptr<platform::MovieWriter>> MovieWriterFactory::create(
    const std::string& path, const std::shared_ptr<const platform::QTCompressionOptions>& compression) {
  const std::string extension = extensionOf(path);
  const auto format = formatNames().find(extension);
  if (format == formatNames().end()) {
    return cannotCreate(path, "Its extension names no movie format. Use .mov, .avi, .mkv, .mp4 or .dv.");
  }
  const auto* chosen = dynamic_cast<const MovieCompression*>(compression.get());
  if (compression && !chosen) return unknownCompression(path, compression->localizedDisplayName());
  if (chosen && !chosen->settings()) {
    reportWithoutSettings(path, *chosen);
    chosen = nullptr;
  }
  Status possible = chosen ? checkCompressed(path, extension, *chosen) : checkReceived(path, extension);
  if (!possible.ok()) return possible.error();
  auto file = OutputFile::create(path);
  if (!file.ok()) return file.error();
  std::unique_ptr<platform::MovieWriter> writer;
  if (format->second == kRaw) {
    writer = std::make_unique<RawWriter>(std::move(file.value()));
  } else {
    writer =
        std::make_unique<ContainerWriter>(std::move(file.value()), format->second, makerOfTracks(chosen, log_), log_);
  }
  return writer;
}

void MovieWriterFactory::reportWithoutSettings(const std::string& path, const MovieCompression& compression) const {
  if (!log_) return;
  log_->write(LogLevel::warning, fmt::format("\"{}\" is written as received: its compression \"{}\" has no settings.",
                                             path, compression.localizedDisplayName()));
}

}  // namespace zq::media
