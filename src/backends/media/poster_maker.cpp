#include "backends/media/poster_maker.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavutil/frame.h>
#include <libavutil/imgutils.h>
#include <libswscale/swscale.h>
}

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <memory>
#include <optional>
#include <utility>

#include "backends/media/picture_shape.h"
#include "dv/dv_system.h"
#include "dv/frame_header.h"

namespace zq::media {
namespace {

constexpr char kNoPoster[] = "Cannot make a poster of the frame";
// Keeps libavcodec's remarks about a damaged frame off the terminal. Added to the level of each, which has eight bits.
constexpr int kSilent = 100;
// 2 is the finest; coarser saves a few hundred bytes and shows.
constexpr int kQuality = 2;

struct CodecDeleter {
  void operator()(AVCodecContext* codec) const { avcodec_free_context(&codec); }
};
struct PictureDeleter {
  void operator()(AVFrame* picture) const { av_frame_free(&picture); }
};
struct PacketDeleter {
  void operator()(AVPacket* packet) const { av_packet_free(&packet); }
};
struct ScalerDeleter {
  void operator()(SwsContext* scaler) const { sws_freeContext(scaler); }
};
using Codec = std::unique_ptr<AVCodecContext, CodecDeleter>;
using Picture = std::unique_ptr<AVFrame, PictureDeleter>;
using Packet = std::unique_ptr<AVPacket, PacketDeleter>;
using Scaler = std::unique_ptr<SwsContext, ScalerDeleter>;

struct Size {
  int width = 0;
  int height = 0;
};

Error posterError(int averror) {
  std::array<char, AV_ERROR_MAX_STRING_SIZE> text{};
  av_strerror(averror, text.data(), text.size());
  return Error{kNoPoster, fmt::format("{}. Check the installed libavcodec and libswscale.", text.data())};
}

Codec makeCodec(const AVCodec* kind) {
  Codec codec(kind ? avcodec_alloc_context3(kind) : nullptr);
  if (!codec) return nullptr;
  codec->thread_count = 1;
  codec->log_level_offset = kSilent;
  return codec;
}

Picture makePicture(AVPixelFormat format, Size size) {
  Picture picture(av_frame_alloc());
  if (!picture) return nullptr;
  picture->format = format;
  picture->width = size.width;
  picture->height = size.height;
  picture->color_range = AVCOL_RANGE_JPEG;
  return av_frame_get_buffer(picture.get(), 0) < 0 ? nullptr : std::move(picture);
}

Status checkFrame(const SharedBytes& frame) {
  const std::optional<DVSystem> system = systemOfFrameSize(frame.size());
  if (!system) {
    return Error{kNoPoster, fmt::format("It has {} bytes; a DV frame has {} or {}.", frame.size(), +FRAME_SIZE_525_60,
                                        +FRAME_SIZE_625_50)};
  }
  if (!looksLikeFrameHeader(frame.bytes()) || systemOfHeader(frame.bytes()) != *system) {
    return Error{kNoPoster,
                 fmt::format("It does not begin as a {} DV frame does: it is damaged or blank.", nameOf(*system))};
  }
  return {};
}

Expected<Picture> decoded(const SharedBytes& frame) {
  const Codec codec = makeCodec(avcodec_find_decoder(AV_CODEC_ID_DVVIDEO));
  const Packet packet(av_packet_alloc());
  Picture picture(av_frame_alloc());
  if (!codec || !packet || !picture) return posterError(AVERROR(ENOMEM));
  int result = avcodec_open2(codec.get(), nullptr, nullptr);
  if (result < 0) return posterError(result);
  // With bytes of its own: the decoder reads past the end of a packet, into padding that a frame has not got.
  result = av_new_packet(packet.get(), static_cast<int>(frame.size()));
  if (result < 0) return posterError(result);
  std::ranges::copy(frame.bytes(), packet->data);
  result = avcodec_send_packet(codec.get(), packet.get());
  if (result >= 0) result = avcodec_receive_frame(codec.get(), picture.get());
  const int rows = frame.size() == std::size_t{FRAME_SIZE_625_50} ? ROW_COUNT_625_50 : ROW_COUNT_525_60;
  if (result < 0 || picture->width != COLUMN_COUNT_625_50 || picture->height != rows) {
    return Error{kNoPoster, "Its picture cannot be decoded."};
  }
  return picture;
}

bool isWide(const SharedBytes& frame, DVAspectRatio aspectRatio) {
  if (aspectRatio == 0) return true;
  if (aspectRatio == 1) return false;
  return isWideScreen(frame.bytes());
}

// 16:9 would be 67.5 rows high and 4:3 106.7 columns wide; even numbers leave bars of the same size on both sides.
Size sizeWithin(bool wide) {
  return wide ? Size{PosterMaker::kWidth, 68} : Size{106, PosterMaker::kHeight};
}

// Of the first field only, the lines 0, 2, 4 ...: what moved between the fields would be there twice in their mean. A
// field has three times the rows of a poster and more.
Expected<Picture> scaled(const AVFrame& picture, Size size) {
  const auto format = static_cast<AVPixelFormat>(picture.format);
  const int rows = picture.height / 2;
  Picture result = makePicture(AV_PIX_FMT_YUV444P, size);
  const Scaler scaler(sws_getContext(picture.width, rows, format, size.width, size.height, AV_PIX_FMT_YUV444P,
                                     SWS_AREA | SWS_ACCURATE_RND | SWS_FULL_CHR_H_INP, nullptr, nullptr, nullptr));
  if (!result || !scaler) return posterError(AVERROR(ENOMEM));
  // Both are of ITU-R BT.601; DV has black at 16 and white at 235, JPEG at 0 and 255.
  const int* bt601 = sws_getCoefficients(SWS_CS_ITU601);
  const int ranged = sws_setColorspaceDetails(scaler.get(), bt601, 0, bt601, 1, 0, 1 << 16, 1 << 16);
  if (ranged < 0) return posterError(AVERROR(ENOSYS));
  std::array<int, 3> strides{};
  for (std::size_t plane = 0; plane < 3; ++plane) strides[plane] = 2 * picture.linesize[plane];
  const int made = sws_scale(scaler.get(), picture.data, strides.data(), 0, rows, result->data, result->linesize);
  if (made != size.height) return posterError(made < 0 ? made : AVERROR_BUG);
  return result;
}

Expected<Picture> onBlack(const AVFrame& picture) {
  Picture poster = makePicture(AV_PIX_FMT_YUV444P, {PosterMaker::kWidth, PosterMaker::kHeight});
  if (!poster) return posterError(AVERROR(ENOMEM));
  const std::ptrdiff_t left = (PosterMaker::kWidth - picture.width) / 2;
  const std::ptrdiff_t top = (PosterMaker::kHeight - picture.height) / 2;
  for (std::size_t plane = 0; plane < 3; ++plane) {
    std::uint8_t* pixels = poster->data[plane];
    const std::ptrdiff_t stride = poster->linesize[plane];
    std::fill_n(pixels, stride * PosterMaker::kHeight, plane == 0 ? std::uint8_t{0} : std::uint8_t{128});
    av_image_copy_plane(pixels + top * stride + left, poster->linesize[plane], picture.data[plane],
                        picture.linesize[plane], picture.width, picture.height);
  }
  return poster;
}

Expected<std::vector<std::uint8_t>> compressed(AVFrame& poster) {
  const Codec codec = makeCodec(avcodec_find_encoder(AV_CODEC_ID_MJPEG));
  const Packet packet(av_packet_alloc());
  if (!codec || !packet) return posterError(AVERROR(ENOMEM));
  codec->width = poster.width;
  codec->height = poster.height;
  codec->pix_fmt = static_cast<AVPixelFormat>(poster.format);
  codec->color_range = AVCOL_RANGE_JPEG;
  codec->time_base = {1, 25};
  // Without the version of the library in it.
  codec->flags |= AV_CODEC_FLAG_BITEXACT | AV_CODEC_FLAG_QSCALE;
  codec->global_quality = kQuality * FF_QP2LAMBDA;
  poster.quality = codec->global_quality;
  int result = avcodec_open2(codec.get(), nullptr, nullptr);
  if (result >= 0) result = avcodec_send_frame(codec.get(), &poster);
  if (result >= 0) result = avcodec_receive_packet(codec.get(), packet.get());
  if (result < 0) return posterError(result);
  return std::vector<std::uint8_t>(packet->data, packet->data + packet->size);
}

}  // namespace

Expected<std::vector<std::uint8_t>> PosterMaker::make(const SharedBytes& frame, DVAspectRatio aspectRatio) const {
  if (Status status = checkFrame(frame); !status.ok()) return status.error();
  auto picture = decoded(frame);
  if (!picture.ok()) return picture.error();
  auto small = scaled(*picture.value(), sizeWithin(isWide(frame, aspectRatio)));
  if (!small.ok()) return small.error();
  auto poster = onBlack(*small.value());
  if (!poster.ok()) return poster.error();
  return compressed(*poster.value());
}

}  // namespace zq::media
