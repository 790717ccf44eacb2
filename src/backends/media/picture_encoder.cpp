#include "backends/media/picture_encoder.h"

#include <fmt/format.h>

#include <utility>

namespace zq::media {
namespace {

void setUpPicture(AVCodecContext& codec, const CompressionSettings& settings, const PicturePlan& plan) {
  codec.width = plan.width;
  codec.height = plan.height;
  codec.pix_fmt = plan.pixelFormat;
  codec.sample_aspect_ratio = plan.pixelShape;
  codec.framerate = plan.frameRate;
  codec.time_base = av_inv_q(plan.frameRate);
  codec.color_range = plan.range;
  codec.color_primaries = plan.primaries;
  codec.color_trc = plan.transfer;
  codec.colorspace = plan.matrix;
  codec.chroma_sample_location = plan.chromaLocation;
  // Lines of both fields in turn from the top, the bottom one being the earlier in time.
  codec.field_order = plan.interlaced ? AV_FIELD_BT : AV_FIELD_PROGRESSIVE;
  codec.gop_size = settings.keyframes;
  // As many as there are processors.
  codec.thread_count = 0;
  if (plan.interlaced) codec.flags |= AV_CODEC_FLAG_INTERLACED_DCT | AV_CODEC_FLAG_INTERLACED_ME;
}

std::string optionsFor(const CompressionSettings& settings, const PicturePlan& plan) {
  std::string options = fmt::format(fmt::runtime(settings.codec->options), settings.quality, settings.speed);
  if (plan.interlaced && *settings.codec->fieldOptions) options += std::string(";") + settings.codec->fieldOptions;
  return options;
}

}  // namespace

PictureEncoder::PictureEncoder(AvEncoder encoder, const PicturePlan& plan)
    : encoder_(std::move(encoder)), plan_(plan) {}

Expected<PictureEncoder> PictureEncoder::open(const CompressionSettings& settings, const PicturePlan& plan,
                                              bool globalHeader) {
  const auto setUp = [&](AVCodecContext& codec) {
    setUpPicture(codec, settings, plan);
    if (globalHeader) codec.flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
  };
  auto encoder = AvEncoder::open(settings.codec->encoder, setUp, optionsFor(settings, plan));
  if (!encoder.ok()) return encoder.error();
  return PictureEncoder(std::move(encoder.value()), plan);
}

Status PictureEncoder::encode(AVFrame& picture, const AvEncoder::Sink& sink) {
  picture.pts = picturesTaken_;
  // What the decoder says of its pictures is none of the encoder's business: that each is a key frame.
  picture.pict_type = AV_PICTURE_TYPE_NONE;
  picture.key_frame = 0;
  picture.interlaced_frame = plan_.interlaced ? 1 : 0;
  picture.top_field_first = 0;
  picture.sample_aspect_ratio = plan_.pixelShape;
  picture.color_range = plan_.range;
  picture.color_primaries = plan_.primaries;
  picture.color_trc = plan_.transfer;
  picture.colorspace = plan_.matrix;
  picture.chroma_location = plan_.chromaLocation;
  picture.quality = encoder_.context().global_quality;
  ++picturesTaken_;
  return encoder_.encode(&picture, sink);
}

}  // namespace zq::media
