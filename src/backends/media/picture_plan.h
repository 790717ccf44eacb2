#pragma once
// What the pictures of a tape become on their way to the encoder.

extern "C" {
#include <libavutil/pixfmt.h>
#include <libavutil/rational.h>
}

#include <string>

#include "backends/media/compression_settings.h"
#include "dv/dv_system.h"

namespace zq::media {

struct PicturePlan {
  int width = 0;
  int height = 0;
  /// How wide a pixel is for its height.
  AVRational pixelShape{1, 1};
  AVRational frameRate{25, 1};
  AVPixelFormat pixelFormat = AV_PIX_FMT_NONE;
  /// Both fields in one picture, the bottom one first.
  bool interlaced = false;
  AVColorRange range = AVCOL_RANGE_MPEG;
  AVChromaLocation chromaLocation = AVCHROMA_LOC_LEFT;
  AVColorPrimaries primaries = AVCOL_PRI_UNSPECIFIED;
  AVColorTransferCharacteristic transfer = AVCOL_TRC_SMPTE170M;
  AVColorSpace matrix = AVCOL_SPC_UNSPECIFIED;
  /// libavfilter's description of the way there; empty when pictures stay as decoded.
  std::string filters;
};

/// A picture that is scaled cannot keep its fields, whose lines are lost: each becomes a picture, whatever the settings
/// say, so that no movement is.
PicturePlan planPictures(DVSystem system, bool wideScreen, const CompressionSettings& settings, PictureSize size);

/// How the tape's decoder gives them.
AVPixelFormat decodedFormatOf(DVSystem system);

}  // namespace zq::media
