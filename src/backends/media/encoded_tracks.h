#pragma once
// A clip's pictures, decoded and compressed anew, and its sound beside them.

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "backends/media/compression_settings.h"
#include "backends/media/dv_picture_decoder.h"
#include "backends/media/movie_tracks.h"
#include "backends/media/picture_encoder.h"
#include "backends/media/picture_filter.h"
#include "backends/media/sound_encoder.h"
#include "base/log.h"

namespace zq::media {

/// Each frame becomes one picture, or two when fields do, also when it cannot be decoded; a few come out later than
/// they went in. Room for those is kept, so that a full disk costs none that write() took.
class EncodedTracks : public MovieTracks {
 public:
  /// `path` is for messages; `muxer` outlives this, and so does `log`, which may be null.
  EncodedTracks(std::string path, AvMuxer& muxer, const CompressionSettings& settings, PictureSize size, Log* log);

  Status start(const MovieFormat& format) override;
  std::int64_t sizeWithNext(std::size_t frameSize) const override;
  Status write(std::span<const std::uint8_t> frame, const MovieSound& sound) override;
  bool keepReceived() const override { return false; }
  Status finish() override;

 private:
  Status openPicture(const MovieFormat& format);
  Status openSound(const MovieFormat& format);
  Status encodePicture(AVFrame& picture);
  Status encodeSound(const MovieSound& sound);
  Status take(int stream, AVPacket& packet);
  void mendDecodingTime(AVPacket& packet) const;
  Error named(const Error& error) const;
  void reportUndecoded();
  void reportUndecodedInAll();

  // Constant after construction.
  const std::string path_;
  AvMuxer& muxer_;
  const CompressionSettings settings_;
  const PictureSize size_;
  Log* const log_;

  // From start() on.
  int soundTracks_ = 0;
  std::unique_ptr<DVPictureDecoder> decoder_;
  std::unique_ptr<PictureFilter> filter_;
  std::optional<PictureEncoder> encoder_;
  // One for each track; none for PCM.
  std::vector<SoundEncoder> soundEncoders_;

  std::int64_t framesTaken_ = 0;
  std::int64_t framesUndecoded_ = 0;
  std::int64_t packetsOut_ = 0;
  // Of a picture: a guess at first, then what came out.
  std::int64_t largestPacket_ = 0;
  // What follows a packet that could not be written is no use without it.
  bool stopped_ = false;
};

}  // namespace zq::media
