#include "backends/media/movie_count.h"

#include "backends/media/movie_frames.h"

namespace zq::media {

Expected<std::int64_t> countMovieFrames(const std::string& path) {
  std::int64_t pictures = 0;
  if (Status read = readMovieFrames(path, [&](const SharedBytes&) { ++pictures; }); !read.ok()) return read.error();
  return pictures;
}

}  // namespace zq::media
