#pragma once
// Encodes one stereo track of sound.

#include <cstdint>
#include <span>
#include <vector>

#include "backends/media/av_encoder.h"
#include "backends/media/compression_codecs.h"

namespace zq::media {

class SoundEncoder {
 public:
  /// `sound` is not PCM, which needs no encoder.
  static Expected<SoundEncoder> open(SoundCodec sound, int rate, bool globalHeader);

  const AVCodecContext& context() const { return encoder_.context(); }
  /// Interleaved stereo samples that follow the earlier ones.
  Status encode(std::span<const std::int16_t> samples, const AvEncoder::Sink& sink);
  Status finish(const AvEncoder::Sink& sink);

 private:
  explicit SoundEncoder(AvEncoder encoder);
  Status encodePiece(std::span<const std::int16_t> samples, const AvEncoder::Sink& sink);

  AvEncoder encoder_;
  Picture piece_ = newPicture();
  // Less than the encoder takes at a time.
  std::vector<std::int16_t> rest_;
  std::int64_t samplesTaken_ = 0;
};

}  // namespace zq::media
