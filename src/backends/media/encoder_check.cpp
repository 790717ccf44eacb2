#include "backends/media/encoder_check.h"

#include "backends/media/av_encoder.h"

namespace zq::media {
namespace {

/// Libavcodec's own, which are always in it, are not asked for.
Status findSound(SoundCodec sound) {
  return sound == SoundCodec::pcm ? Status() : AvEncoder::find(keyOf(sound));
}

}  // namespace

// Opened they are for each movie only: some start dozens of threads, and a capture that compresses nothing would wait
// for all of them. One that cannot be opened then says so with the file.
Status checkEncoders(const CompressionSettings& settings) {
  Status picture = AvEncoder::find(settings.codec->encoder);
  return picture.ok() ? findSound(settings.sound) : picture;
}

}  // namespace zq::media
