#pragma once
// Decodes a movie file, or a tape's frames, with libavcodec.

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <functional>
#include <memory>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

#include "made_clips.h"

namespace zq::test {

using DecodedPicture = std::shared_ptr<AVFrame>;

struct DecodedMovie {
  std::vector<DecodedPicture> pictures;
  /// Of each track, the left channel from -1 to 1. What the encoder added at its start is gone.
  std::vector<std::vector<float>> sounds;
  /// Seconds to the first sample of each track.
  std::vector<double> soundStarts;
};

namespace detail {

inline DecodedPicture newFrame() {
  return {av_frame_alloc(), [](AVFrame* frame) { av_frame_free(&frame); }};
}

class Decoder {
 public:
  explicit Decoder(const AVCodecParameters& parameters) : Decoder(parameters.codec_id) {
    avcodec_parameters_to_context(context_, &parameters);
    open();
  }
  explicit Decoder(AVCodecID id) : codec_(avcodec_find_decoder(id)), context_(avcodec_alloc_context3(codec_)) {
    context_->err_recognition = AV_EF_CRCCHECK | AV_EF_EXPLODE;
  }
  ~Decoder() { avcodec_free_context(&context_); }
  Decoder(const Decoder&) = delete;
  Decoder& operator=(const Decoder&) = delete;

  void open() {
    if (avcodec_open2(context_, codec_, nullptr) < 0) throw std::runtime_error("cannot open a decoder");
  }
  AVCodecContext& context() { return *context_; }
  void decode(const AVPacket* packet, const std::function<void(const DecodedPicture&)>& take) {
    if (avcodec_send_packet(context_, packet) < 0) throw std::runtime_error("a packet cannot be decoded");
    for (DecodedPicture frame = newFrame(); avcodec_receive_frame(context_, frame.get()) >= 0; frame = newFrame()) {
      take(frame);
    }
  }

 private:
  const AVCodec* codec_;
  AVCodecContext* context_;
};

inline void addSamples(const AVFrame& frame, std::vector<float>& samples) {
  for (int i = 0; i < frame.nb_samples; ++i) {
    const auto format = static_cast<AVSampleFormat>(frame.format);
    if (format == AV_SAMPLE_FMT_FLTP) samples.push_back(reinterpret_cast<const float*>(frame.data[0])[i]);
    if (format == AV_SAMPLE_FMT_S16) {
      samples.push_back(static_cast<float>(reinterpret_cast<const std::int16_t*>(frame.data[0])[2 * i]) / 32768.0F);
    }
  }
}

}  // namespace detail

/// Throws when anything in it cannot be decoded.
inline DecodedMovie decodeMovie(const std::string& path) {
  AVFormatContext* opened = nullptr;
  if (avformat_open_input(&opened, path.c_str(), nullptr, nullptr) < 0) throw std::runtime_error("no movie: " + path);
  const std::shared_ptr<AVFormatContext> file(opened, [](AVFormatContext* c) { avformat_close_input(&c); });
  if (avformat_find_stream_info(file.get(), nullptr) < 0) throw std::runtime_error("unreadable movie: " + path);
  DecodedMovie movie;
  std::vector<std::unique_ptr<detail::Decoder>> decoders(file->nb_streams);
  std::vector<std::size_t> tracks(file->nb_streams);
  for (std::size_t i = 0; i < decoders.size(); ++i) {
    const AVCodecParameters& parameters = *file->streams[i]->codecpar;
    if (parameters.codec_type != AVMEDIA_TYPE_VIDEO && parameters.codec_type != AVMEDIA_TYPE_AUDIO) continue;
    decoders[i] = std::make_unique<detail::Decoder>(parameters);
    decoders[i]->context().pkt_timebase = file->streams[i]->time_base;
    if (parameters.codec_type == AVMEDIA_TYPE_VIDEO) continue;
    tracks[i] = movie.sounds.size();
    movie.sounds.emplace_back();
    movie.soundStarts.push_back(-1);
  }
  const auto decode = [&](std::size_t stream, const AVPacket* packet) {
    decoders[stream]->decode(packet, [&](const DecodedPicture& frame) {
      const bool isPicture = decoders[stream]->context().codec_type == AVMEDIA_TYPE_VIDEO;
      if (isPicture) return movie.pictures.push_back(frame);
      std::vector<float>& samples = movie.sounds[tracks[stream]];
      if (samples.empty()) {
        movie.soundStarts[tracks[stream]] = static_cast<double>(frame->pts) * av_q2d(file->streams[stream]->time_base);
      }
      detail::addSamples(*frame, samples);
    });
  };
  AVPacket* packet = av_packet_alloc();
  while (av_read_frame(file.get(), packet) >= 0) {
    const auto stream = static_cast<std::size_t>(packet->stream_index);
    if (decoders[stream]) decode(stream, packet);
    av_packet_unref(packet);
  }
  av_packet_free(&packet);
  for (std::size_t i = 0; i < decoders.size(); ++i) {
    if (decoders[i]) decode(i, nullptr);
  }
  return movie;
}

/// The tape's pictures.
inline std::vector<DecodedPicture> decodeClip(const Clip& clip) {
  detail::Decoder decoder(AV_CODEC_ID_DVVIDEO);
  decoder.open();
  std::vector<DecodedPicture> pictures;
  for (const auto& frame : clip) {
    AVPacket* packet = av_packet_alloc();
    av_new_packet(packet, static_cast<int>(frame.lengthForAllSamples()));
    std::ranges::copy(frame.bytesForAllSamples.bytes(), packet->data);
    decoder.decode(packet, [&](const DecodedPicture& picture) { pictures.push_back(picture); });
    av_packet_free(&packet);
  }
  return pictures;
}

/// Reads a sample of a plane, of 8 or 10 bits, as one of 8.
inline double sampleAt(const AVFrame& picture, int plane, int x, int y) {
  const std::uint8_t* line = picture.data[plane] + static_cast<std::ptrdiff_t>(y) * picture.linesize[plane];
  if (picture.format != AV_PIX_FMT_YUV422P10) return line[x];
  std::uint16_t sample = 0;
  std::memcpy(&sample, line + std::ptrdiff_t{2} * x, sizeof(sample));
  return sample / 4.0;
}

/// In dB, over a grid of places that have their like at other ones of the tape's picture.
class Psnr {
 public:
  void add(double got, double expected) {
    sum_ += (got - expected) * (got - expected);
    ++count_;
  }
  double value() const { return sum_ == 0 ? 100 : 10 * std::log10(255.0 * 255.0 * count_ / sum_); }

 private:
  double sum_ = 0;
  double count_ = 0;
};

/// What a luma of 0 to 255 is from 16 to 235.
inline double limitedRange(const AVFrame& picture, double luma) {
  return picture.color_range == AVCOL_RANGE_JPEG ? 16 + luma * 219 / 255 : luma;
}

/// The luma of every second line from `firstLine` on. Those of a field are the tape's in its picture after
/// deinterlacing too.
inline double psnrOfField(const AVFrame& picture, const AVFrame& tape, int firstLine) {
  Psnr psnr;
  for (int y = firstLine; y < tape.height; y += 2) {
    for (int x = 0; x < tape.width; ++x) {
      psnr.add(limitedRange(picture, sampleAt(picture, 0, x, y)), sampleAt(tape, 0, x, y));
    }
  }
  return psnr.value();
}

}  // namespace zq::test
