#include "backends/media/sound_encoder.h"

extern "C" {
#include <libavutil/channel_layout.h>
}

#include <algorithm>
#include <utility>

namespace zq::media {
namespace {

constexpr std::size_t kStereo = 2;
// Good stereo at 48 kHz.
constexpr int kAacBitsPerSample = 4;
constexpr float kFullScale = 32768.0F;

void copyPlanar(std::span<const std::int16_t> samples, AVFrame& piece) {
  for (std::size_t channel = 0; channel < kStereo; ++channel) {
    auto* plane = reinterpret_cast<float*>(piece.data[channel]);
    for (std::size_t i = channel; i < samples.size(); i += kStereo) {
      *plane++ = static_cast<float>(samples[i]) / kFullScale;
    }
  }
}

}  // namespace

SoundEncoder::SoundEncoder(AvEncoder encoder) : encoder_(std::move(encoder)) {}

Expected<SoundEncoder> SoundEncoder::open(SoundCodec sound, int rate, bool globalHeader) {
  const bool isAac = sound == SoundCodec::aac;
  const auto setUp = [&](AVCodecContext& codec) {
    codec.sample_rate = rate;
    codec.time_base = {1, rate};
    codec.sample_fmt = isAac ? AV_SAMPLE_FMT_FLTP : AV_SAMPLE_FMT_S16;
    av_channel_layout_default(&codec.ch_layout, kStereo);
    if (isAac) codec.bit_rate = std::int64_t{kAacBitsPerSample} * rate;
    if (globalHeader) codec.flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
  };
  auto encoder = AvEncoder::open(keyOf(sound), setUp, "");
  if (!encoder.ok()) return encoder.error();
  return SoundEncoder(std::move(encoder.value()));
}

Status SoundEncoder::encode(std::span<const std::int16_t> samples, const AvEncoder::Sink& sink) {
  rest_.insert(rest_.end(), samples.begin(), samples.end());
  const std::size_t pieceSize = static_cast<std::size_t>(context().frame_size) * kStereo;
  std::span<const std::int16_t> left = rest_;
  Status result;
  for (; result.ok() && left.size() >= pieceSize; left = left.subspan(pieceSize)) {
    result = encodePiece(left.first(pieceSize), sink);
  }
  rest_.erase(rest_.begin(), rest_.end() - static_cast<std::ptrdiff_t>(left.size()));
  return result;
}

Status SoundEncoder::finish(const AvEncoder::Sink& sink) {
  Status result = rest_.empty() ? Status() : encodePiece(rest_, sink);
  rest_.clear();
  Status drained = encoder_.encode(nullptr, sink);
  return result.ok() ? drained : result;
}

Status SoundEncoder::encodePiece(std::span<const std::int16_t> samples, const AvEncoder::Sink& sink) {
  av_frame_unref(piece_.get());
  piece_->format = context().sample_fmt;
  piece_->sample_rate = context().sample_rate;
  piece_->nb_samples = static_cast<int>(samples.size() / kStereo);
  piece_->pts = samplesTaken_;
  av_channel_layout_default(&piece_->ch_layout, kStereo);
  if (av_frame_get_buffer(piece_.get(), 0) < 0) throw std::bad_alloc();
  samplesTaken_ += piece_->nb_samples;
  if (context().sample_fmt == AV_SAMPLE_FMT_FLTP) {
    copyPlanar(samples, *piece_);
  } else {
    std::ranges::copy(samples, reinterpret_cast<std::int16_t*>(piece_->data[0]));
  }
  return encoder_.encode(piece_.get(), sink);
}

}  // namespace zq::media
