#pragma once
// Makes the writer for a movie file from its extension.

#include <memory>
#include <string>

#include "base/log.h"
#include "platform/movie_writer.h"

namespace zq::media {

/// .mov, .avi and .mkv are movies with picture and sound tracks, .dv is the raw stream; upper case is as good.
class MovieWriterFactory : public platform::MovieWriterFactory {
 public:
  /// `log` may be null and outlives the factory and its writers.
  explicit MovieWriterFactory(Log* log = nullptr) : log_(log) {}

  Expected<std::unique_ptr<platform::MovieWriter>> create(const std::string& path) override;

 private:
  Log* const log_;
};

}  // namespace zq::media
