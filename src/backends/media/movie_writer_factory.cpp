#include "backends/media/movie_writer_factory.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <utility>

#include "backends/media/container_writer.h"
#include "backends/media/output_file.h"
#include "backends/media/raw_writer.h"

namespace zq::media {
namespace {

constexpr char kRaw[] = "dv";

/// Lower case; only ASCII, since no extension that is looked for has anything else.
std::string extensionOf(const std::string& path) {
  std::string extension = std::filesystem::path(path).extension().string();
  std::transform(extension.begin(), extension.end(), extension.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
  return extension;
}

/// libavformat's names of the containers.
const std::map<std::string, std::string>& formatNames() {
  static const std::map<std::string, std::string> names{
      {".mov", "mov"}, {".avi", "avi"}, {".mkv", "matroska"}, {".dv", kRaw}};
  return names;
}

}  // namespace

Expected<std::unique_ptr<platform::MovieWriter>> MovieWriterFactory::create(const std::string& path) {
  const auto format = formatNames().find(extensionOf(path));
  if (format == formatNames().end()) {
    return Error{fmt::format("Cannot create \"{}\"", path),
                 "Its extension names no movie format. Use .mov, .avi, .mkv or .dv."};
  }
  auto file = OutputFile::create(path);
  if (!file.ok()) return file.error();
  std::unique_ptr<platform::MovieWriter> writer;
  if (format->second == kRaw) {
    writer = std::make_unique<RawWriter>(std::move(file.value()));
  } else {
    writer = std::make_unique<ContainerWriter>(std::move(file.value()), format->second, log_);
  }
  return writer;
}

}  // namespace zq::media
