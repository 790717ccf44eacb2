#include "backends/media/dv_picture_encoder.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavutil/frame.h>
}

#include <fmt/format.h>

#include <array>
#include <utility>

#include "dv/dv_constants.h"

namespace zq::media {
namespace {

// The five macroblocks of a segment are compressed alone, so that slices scale; more threads than this wait for the
// painter.
constexpr int kThreads = 2;

Error encoderError(const char* what, int averror) {
  std::array<char, AV_ERROR_MAX_STRING_SIZE> text{};
  av_strerror(averror, text.data(), text.size());
  return Error{fmt::format("The DV encoder {}", what), fmt::format("{}. Check the installed libavcodec.", text.data())};
}

}  // namespace

struct DVPictureEncoder::Context {
  ~Context() {
    av_packet_free(&packet);
    av_frame_free(&picture);
    avcodec_free_context(&codec);
  }
  Status open(DVSystem system, bool wideScreen);

  AVCodecContext* codec = nullptr;
  AVFrame* picture = nullptr;
  AVPacket* packet = nullptr;
  std::int64_t frameCount = 0;
  PicturePlanes planes;
};

Status DVPictureEncoder::Context::open(DVSystem system, bool wideScreen) {
  const AVCodec* encoder = avcodec_find_encoder(AV_CODEC_ID_DVVIDEO);
  if (!encoder) return encoderError("is missing", AVERROR_ENCODER_NOT_FOUND);
  codec = avcodec_alloc_context3(encoder);
  picture = av_frame_alloc();
  packet = av_packet_alloc();
  if (!codec || !picture || !packet) return encoderError("cannot be set up", AVERROR(ENOMEM));

  const bool is625 = system == DVSystem::pal625_50;
  const FrameRate rate = frameRateOf(system);
  codec->width = is625 ? COLUMN_COUNT_625_50 : COLUMN_COUNT_525_60;
  codec->height = is625 ? ROW_COUNT_625_50 : ROW_COUNT_525_60;
  codec->pix_fmt = is625 ? AV_PIX_FMT_YUV420P : AV_PIX_FMT_YUV411P;
  codec->time_base = {rate.denominator, rate.numerator};
  codec->framerate = {rate.numerator, rate.denominator};
  // The encoder derives the aspect-ratio code of the frame from the shape of a pixel.
  if (is625) codec->sample_aspect_ratio = wideScreen ? AVRational{64, 45} : AVRational{16, 15};
  if (!is625) codec->sample_aspect_ratio = wideScreen ? AVRational{32, 27} : AVRational{8, 9};
  codec->thread_type = FF_THREAD_SLICE;
  codec->thread_count = kThreads;
  const int opened = avcodec_open2(codec, encoder, nullptr);
  if (opened < 0) return encoderError("cannot be opened", opened);

  picture->format = codec->pix_fmt;
  picture->width = codec->width;
  picture->height = codec->height;
  const int allocated = av_frame_get_buffer(picture, 0);
  if (allocated < 0) return encoderError("has no memory for a picture", allocated);
  planes.width = codec->width;
  planes.height = codec->height;
  planes.chromaShiftX = is625 ? 1 : 2;
  planes.chromaShiftY = is625 ? 1 : 0;
  return {};
}

Expected<std::unique_ptr<DVPictureEncoder>> DVPictureEncoder::create(DVSystem system, bool wideScreen) {
  auto context = std::make_unique<Context>();
  Status opened = context->open(system, wideScreen);
  if (!opened.ok()) return opened.error();
  return std::unique_ptr<DVPictureEncoder>(new DVPictureEncoder(std::move(context)));
}

DVPictureEncoder::DVPictureEncoder(std::unique_ptr<Context> context) : context_(std::move(context)) {}

DVPictureEncoder::~DVPictureEncoder() = default;

Expected<std::span<std::uint8_t>> DVPictureEncoder::encode(const std::function<void(const PicturePlanes&)>& paint) {
  Context& c = *context_;
  int result = av_frame_make_writable(c.picture);
  if (result < 0) return encoderError("has no memory for a picture", result);
  for (std::size_t plane = 0; plane < 3; ++plane) {
    c.planes.data[plane] = c.picture->data[plane];
    c.planes.stride[plane] = c.picture->linesize[plane];
  }
  paint(c.planes);
  c.picture->pts = c.frameCount++;
  av_packet_unref(c.packet);
  result = avcodec_send_frame(c.codec, c.picture);
  if (result >= 0) result = avcodec_receive_packet(c.codec, c.packet);
  if (result >= 0) result = av_packet_make_writable(c.packet);
  if (result < 0) return encoderError("failed", result);
  return std::span(c.packet->data, static_cast<std::size_t>(c.packet->size));
}

}  // namespace zq::media
