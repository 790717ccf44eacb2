#include "backends/media/dv_picture_decoder.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavutil/imgutils.h>
}

#include <algorithm>
#include <utility>

#include "backends/media/av_error.h"
#include "backends/media/av_handles.h"
#include "backends/media/picture_plan.h"
#include "dv/dv_constants.h"
#include "dv/frame_header.h"

namespace zq::media {
namespace {

// Keeps libavcodec's remarks about damaged frames off the terminal. Added to the level of each, which has eight bits.
constexpr int kSilent = 100;
constexpr int kThreads = 2;

Error decoderError(int averror) {
  return Error{"The DV decoder cannot be opened", avReason(averror) + ". Check the installed libavcodec."};
}

}  // namespace

struct DVPictureDecoder::Context {
  Status open(DVSystem tapeSystem);
  Status makeBlackPicture() const;
  bool decodeFrame(std::span<const std::uint8_t> frame);

  DVSystem system{};
  Codec codec;
  const Packet packet = newPacket();
  // The last picture, and where the next one is made.
  Picture shown = newPicture();
  Picture next = newPicture();
};

Status DVPictureDecoder::Context::open(DVSystem tapeSystem) {
  system = tapeSystem;
  const AVCodec* decoder = avcodec_find_decoder(AV_CODEC_ID_DVVIDEO);
  codec.reset(decoder ? avcodec_alloc_context3(decoder) : nullptr);
  if (!codec) return decoderError(AVERROR_DECODER_NOT_FOUND);
  codec->log_level_offset = kSilent;
  codec->thread_type = FF_THREAD_SLICE;
  codec->thread_count = kThreads;
  int result = avcodec_open2(codec.get(), decoder, nullptr);
  if (result >= 0) result = av_new_packet(packet.get(), static_cast<int>(frameSizeOf(system)));
  if (result < 0) return decoderError(result);
  return makeBlackPicture();
}

Status DVPictureDecoder::Context::makeBlackPicture() const {
  const bool is625 = system == DVSystem::pal625_50;
  shown->format = decodedFormatOf(system);
  shown->width = COLUMN_COUNT_625_50;
  shown->height = is625 ? ROW_COUNT_625_50 : ROW_COUNT_525_60;
  shown->interlaced_frame = 1;
  int result = av_frame_get_buffer(shown.get(), 0);
  if (result >= 0) {
    const std::ptrdiff_t strides[4] = {shown->linesize[0], shown->linesize[1], shown->linesize[2], 0};
    result = av_image_fill_black(shown->data, strides, decodedFormatOf(system), AVCOL_RANGE_MPEG, shown->width,
                                 shown->height);
  }
  return result < 0 ? Status(decoderError(result)) : Status();
}

/// With bytes of the packet's own: the decoder reads past the end of them, into padding that a frame has not got.
bool DVPictureDecoder::Context::decodeFrame(std::span<const std::uint8_t> frame) {
  // A header that is damaged could make it a picture of the other system, and a blank one is none.
  if (frame.size() != frameSizeOf(system) || !looksLikeFrameHeader(frame) || systemOfHeader(frame) != system) {
    return false;
  }
  if (av_packet_make_writable(packet.get()) < 0) return false;
  std::ranges::copy(frame, packet->data);
  av_frame_unref(next.get());
  if (avcodec_send_packet(codec.get(), packet.get()) < 0) return false;
  if (avcodec_receive_frame(codec.get(), next.get()) < 0) return false;
  return next->width == shown->width && next->height == shown->height && next->format == decodedFormatOf(system);
}

Expected<std::unique_ptr<DVPictureDecoder>> DVPictureDecoder::create(DVSystem system) {
  auto context = std::make_unique<Context>();
  Status opened = context->open(system);
  if (!opened.ok()) return opened.error();
  return std::unique_ptr<DVPictureDecoder>(new DVPictureDecoder(std::move(context)));
}

DVPictureDecoder::DVPictureDecoder(std::unique_ptr<Context> context) : context_(std::move(context)) {}

DVPictureDecoder::~DVPictureDecoder() = default;

DVPictureDecoder::Decoded DVPictureDecoder::decode(std::span<const std::uint8_t> frame) {
  const bool decoded = context_->decodeFrame(frame);
  if (decoded) std::swap(context_->shown, context_->next);
  return {*context_->shown, decoded};
}

}  // namespace zq::media
