#pragma once
// Makes the writer for a movie file from its extension.

#include <memory>
#include <string>

#include "base/log.h"
#include "platform/movie_writer.h"

namespace zq::media {

class MovieCompression;

/// .mov, .avi, .mkv and .mp4 are movies with picture and sound tracks, .dv is the raw stream; upper case is as good.
/// Not every one takes every compression: .mp4 takes no DV, .dv nothing else.
class MovieWriterFactory : public platform::MovieWriterFactory {
 public:
  /// `log` may be null and outlives the factory and its writers.
  explicit MovieWriterFactory(Log* log = nullptr);

  Expected<std::unique_ptr<platform::MovieWriter>> create(
      const std::string& path, const std::shared_ptr<const platform::QTCompressionOptions>& compression) override;

 private:
  void reportWithoutSettings(const std::string& path, const MovieCompression& compression) const;

  Log* const log_;
};

}  // namespace zq::media
