#include "backends/media/picture_plan.h"

#include <fmt/format.h>

#include <vector>

#include "dv/dv_constants.h"

namespace zq::media {
namespace {

bool is625(DVSystem system) {
  return system == DVSystem::pal625_50;
}

PictureSize tapeSize(DVSystem system) {
  return is625(system) ? PictureSize{COLUMN_COUNT_625_50, ROW_COUNT_625_50}
                       : PictureSize{COLUMN_COUNT_525_60, ROW_COUNT_525_60};
}

/// All of the width is shown 4:3 or 16:9, which is how players and editors take DV.
AVRational pixelShapeFor(bool wideScreen, PictureSize size) {
  AVRational shape{};
  av_reduce(&shape.num, &shape.den, std::int64_t{wideScreen ? 16 : 4} * size.height,
            std::int64_t{wideScreen ? 9 : 3} * size.width, INT16_MAX);
  return shape;
}

const char* nameOfFormat(AVPixelFormat format) {
  switch (format) {
    case AV_PIX_FMT_YUV422P10:
      return "yuv422p10le";
    case AV_PIX_FMT_YUV411P:
      return "yuv411p";
    default:
      return "yuv420p";
  }
}

// Where chroma lies, in 1/256 of a luma line and column from the first one. The tape's lies on the first line and
// column of its block in either system: in each field of a 4:2:0 picture.
constexpr char kTapeChroma[] = "in_h_chr_pos=0:in_v_chr_pos=0";

std::string chromaPosition(const PicturePlan& plan) {
  const bool halvesLines = plan.pixelFormat == AV_PIX_FMT_YUV420P;
  const bool betweenLines = halvesLines && plan.chromaLocation != AVCHROMA_LOC_TOPLEFT;
  const int column = plan.chromaLocation == AVCHROMA_LOC_CENTER ? 128 : 0;
  // In a field of such a picture it lies a quarter down or up; the filter knows that when it is not told.
  if (plan.interlaced && betweenLines) return fmt::format("out_h_chr_pos={}", column);
  return fmt::format("out_h_chr_pos={}:out_v_chr_pos={}", column, betweenLines ? 128 : 0);
}

/// 4:2:0 that stays as it is stays where it is.
AVChromaLocation chromaLocationFor(DVSystem system, bool scaled, const PicturePlan& plan) {
  // As the JPEG File Interchange Format has it.
  if (plan.range == AVCOL_RANGE_JPEG) return AVCHROMA_LOC_CENTER;
  if (plan.pixelFormat == AV_PIX_FMT_YUV422P10) return AVCHROMA_LOC_LEFT;
  return is625(system) && !scaled ? AVCHROMA_LOC_TOPLEFT : AVCHROMA_LOC_LEFT;
}

std::string scaleFilter(const PicturePlan& plan) {
  return fmt::format("scale=w={}:h={}:interl={}:flags=lanczos+accurate_rnd:{}:{}:in_range=tv:out_range={}", plan.width,
                     plan.height, plan.interlaced ? 1 : 0, kTapeChroma, chromaPosition(plan),
                     plan.range == AVCOL_RANGE_JPEG ? "pc" : "tv") +
         fmt::format(",format=pix_fmts={}", nameOfFormat(plan.pixelFormat));
}

std::string filtersFor(DVSystem system, const CompressionSettings& settings, const PicturePlan& plan, bool scaled) {
  std::vector<std::string> filters;
  if (!plan.interlaced) {
    filters.emplace_back("bwdif=mode=send_field:parity=bff:deint=all");
    // The first of those that fall together: it is of the earlier field.
    const FrameRate rate = settings.frameRate;
    if (rate.numerator != 0) filters.push_back(fmt::format("fps=fps={}/{}", rate.numerator, rate.denominator));
  }
  const bool converted = plan.pixelFormat != decodedFormatOf(system) || plan.range != AVCOL_RANGE_MPEG;
  if (scaled || converted) filters.push_back(scaleFilter(plan));
  return fmt::format("{}", fmt::join(filters, ","));
}

AVRational frameRateFor(DVSystem system, const CompressionSettings& settings, bool interlaced) {
  if (settings.frameRate.numerator != 0) return {settings.frameRate.numerator, settings.frameRate.denominator};
  const FrameRate tape = frameRateOf(system);
  return {interlaced ? tape.numerator : 2 * tape.numerator, tape.denominator};
}

}  // namespace

AVPixelFormat decodedFormatOf(DVSystem system) {
  return is625(system) ? AV_PIX_FMT_YUV420P : AV_PIX_FMT_YUV411P;
}

PicturePlan planPictures(DVSystem system, bool wideScreen, const CompressionSettings& settings, PictureSize size) {
  const PictureSize tape = tapeSize(system);
  const PictureSize target = size.isTapes() ? tape : size;
  const bool scaled = target != tape;
  PicturePlan plan;
  plan.width = target.width;
  plan.height = target.height;
  plan.pixelShape = pixelShapeFor(wideScreen, target);
  plan.interlaced = settings.scan == Scan::keep && !scaled;
  plan.frameRate = frameRateFor(system, settings, plan.interlaced);
  plan.pixelFormat =
      settings.codec->pixelFormat == AV_PIX_FMT_NONE ? decodedFormatOf(system) : settings.codec->pixelFormat;
  plan.range = settings.codec->fullRange ? AVCOL_RANGE_JPEG : AVCOL_RANGE_MPEG;
  plan.chromaLocation = chromaLocationFor(system, scaled, plan);
  plan.primaries = is625(system) ? AVCOL_PRI_BT470BG : AVCOL_PRI_SMPTE170M;
  plan.matrix = is625(system) ? AVCOL_SPC_BT470BG : AVCOL_SPC_SMPTE170M;
  plan.filters = filtersFor(system, settings, plan, scaled);
  return plan;
}

}  // namespace zq::media
