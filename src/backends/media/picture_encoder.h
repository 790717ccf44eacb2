#pragma once
// Opens the encoder for pictures, and numbers them on their way in.

#include <cstdint>

#include "backends/media/av_encoder.h"
#include "backends/media/compression_settings.h"
#include "backends/media/picture_plan.h"

namespace zq::media {

class PictureEncoder {
 public:
  static Expected<PictureEncoder> open(const CompressionSettings& settings, const PicturePlan& plan, bool globalHeader);

  const AVCodecContext& context() const { return encoder_.context(); }
  /// The next picture.
  Status encode(AVFrame& picture, const AvEncoder::Sink& sink);
  Status finish(const AvEncoder::Sink& sink) { return encoder_.encode(nullptr, sink); }
  std::int64_t picturesTaken() const { return picturesTaken_; }

 private:
  PictureEncoder(AvEncoder encoder, const PicturePlan& plan);

  AvEncoder encoder_;
  PicturePlan plan_;
  std::int64_t picturesTaken_ = 0;
};

}  // namespace zq::media
