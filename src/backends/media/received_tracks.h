#pragma once
// A clip's DV stream as received, and its sound once more as PCM tracks, which is what editing programs read.

#include "backends/media/movie_tracks.h"

namespace zq::media {

class ReceivedTracks : public MovieTracks {
 public:
  /// `muxer` outlives this.
  explicit ReceivedTracks(AvMuxer& muxer) : muxer_(muxer) {}

  Status start(const MovieFormat& format) override;
  std::int64_t sizeWithNext(std::size_t frameSize) const override { return static_cast<std::int64_t>(frameSize); }
  Status write(std::span<const std::uint8_t> frame, const MovieSound& sound) override;
  bool keepReceived() const override { return true; }
  Status finish() override { return {}; }

 private:
  AvMuxer& muxer_;
  int soundTracks_ = 0;
};

}  // namespace zq::media
