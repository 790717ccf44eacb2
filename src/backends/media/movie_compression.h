#pragma once
// A choice of how movies are compressed, as it is handed from the platform to the writers.

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "backends/media/compression_settings.h"
#include "platform/compression.h"

namespace zq::media {

class MovieCompression : public platform::QTCompressionOptions {
 public:
  /// Without settings, movies are written as received. `containers` are extensions without the dot.
  MovieCompression(std::string name, std::optional<CompressionSettings> settings, PictureSize size,
                   std::vector<std::string> containers)
      : name_(std::move(name)), settings_(std::move(settings)), size_(size), containers_(std::move(containers)) {}

  std::string localizedDisplayName() const override { return name_; }
  const std::optional<CompressionSettings>& settings() const { return settings_; }
  PictureSize size() const { return size_; }
  const std::vector<std::string>& containers() const { return containers_; }

 private:
  const std::string name_;
  const std::optional<CompressionSettings> settings_;
  const PictureSize size_;
  const std::vector<std::string> containers_;
};

}  // namespace zq::media
