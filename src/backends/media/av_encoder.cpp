#include "backends/media/av_encoder.h"

extern "C" {
#include <libavutil/dict.h>
}

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <utility>

#include "backends/media/av_error.h"

namespace zq::media {
namespace {

// Keeps the encoder's reports off the terminal. Added to the level of each, which has eight bits.
constexpr int kSilent = 100;

struct Options {
  ~Options() { av_dict_free(&dictionary); }
  AVDictionary* dictionary = nullptr;
};

bool hasThreadsOfItsOwn(const AVCodecContext& codec) {
  return (codec.codec->capabilities & AV_CODEC_CAP_OTHER_THREADS) != 0;
}

Error notThere(const std::string& name) {
  return Error{fmt::format("The encoder {} is not there", name),
               "The installed libavcodec was built without it. Install one with it, or choose another compression."};
}

Error cannotOpen(const std::string& name, const std::string& reason) {
  return Error{fmt::format("The encoder {} cannot be opened", name),
               fmt::format("{}. Choose another compression, or check the installed libavcodec.", reason)};
}

}  // namespace

AvEncoder::AvEncoder(std::string name, Codec codec) : name_(std::move(name)), codec_(std::move(codec)) {}

AvEncoder::~AvEncoder() {
  if (codec_ && !ended_ && hasThreadsOfItsOwn(*codec_)) endQuietly();
}

/// That of AV1, when it is closed, waits for ever until it was told that nothing comes, and until there was a picture.
void AvEncoder::endQuietly() {
  const Sink drop = [](AVPacket&) { return Status(); };
  if (!started_) {
    const Picture picture = newPicture();
    picture->format = codec_->pix_fmt;
    picture->width = codec_->width;
    picture->height = codec_->height;
    picture->pts = 0;
    if (av_frame_get_buffer(picture.get(), 0) < 0) return;
    for (const AVBufferRef* plane : picture->buf) {
      if (plane) std::fill_n(plane->data, plane->size, std::uint8_t{0});
    }
    static_cast<void>(encode(picture.get(), drop));
  }
  static_cast<void>(encode(nullptr, drop));
}

Status AvEncoder::find(const std::string& name) {
  return avcodec_find_encoder_by_name(name.c_str()) ? Status() : Status(notThere(name));
}

Expected<AvEncoder> AvEncoder::open(const std::string& name, const std::function<void(AVCodecContext&)>& setUp,
                                    const std::string& options) {
  const AVCodec* encoder = avcodec_find_encoder_by_name(name.c_str());
  if (!encoder) return notThere(name);
  Codec codec(avcodec_alloc_context3(encoder));
  if (!codec) throw std::bad_alloc();
  codec->log_level_offset = kSilent;
  setUp(*codec);
  Options own;
  int result = av_dict_parse_string(&own.dictionary, options.c_str(), "=", ";", 0);
  if (result >= 0) result = avcodec_open2(codec.get(), encoder, &own.dictionary);
  if (result < 0) return cannotOpen(name, avReason(result));
  AvEncoder opened(name, std::move(codec));
  const AVDictionaryEntry* left = av_dict_get(own.dictionary, "", nullptr, AV_DICT_IGNORE_SUFFIX);
  if (left) return cannotOpen(name, fmt::format("It knows no setting \"{}\"", left->key));
  return opened;
}

Status AvEncoder::encode(AVFrame* frame, const Sink& sink) {
  const auto failure = [this](int averror) {
    return Error{fmt::format("The encoder {} failed", name_),
                 fmt::format("{}. What was encoded before is kept.", avReason(averror))};
  };
  (frame ? started_ : ended_) = true;
  const int sent = avcodec_send_frame(codec_.get(), frame);
  if (sent < 0 && sent != AVERROR_EOF) return failure(sent);
  while (true) {
    av_packet_unref(packet_.get());
    const int received = avcodec_receive_packet(codec_.get(), packet_.get());
    if (received == AVERROR(EAGAIN) || received == AVERROR_EOF) return {};
    if (received < 0) return failure(received);
    Status taken = sink(*packet_);
    if (!taken.ok()) return taken;
  }
}

}  // namespace zq::media
