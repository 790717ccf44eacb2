#pragma once
// What becomes of a clip's frames on their way into the tracks of a movie.

#include <cstdint>
#include <span>

#include "backends/media/av_muxer.h"
#include "backends/media/movie_sound.h"
#include "base/status.h"

namespace zq::media {

class MovieTracks {
 public:
  virtual ~MovieTracks() = default;
  /// Lays down the tracks and writes the head. Comes first.
  virtual Status start(const MovieFormat& format) = 0;
  /// No less than the bytes of tracks that come of all frames up to one more of this size.
  virtual std::int64_t sizeWithNext(std::size_t frameSize) const = 0;
  /// Takes the next frame, whose sound is what `sound` took last.
  virtual Status write(std::span<const std::uint8_t> frame, const MovieSound& sound) = 0;
  /// Whether what was received can be had back from the movie.
  virtual bool keepReceived() const = 0;
  /// Writes what is still on its way. Follows errors too.
  virtual Status finish() = 0;
};

}  // namespace zq::media
