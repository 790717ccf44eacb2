#include "views/strip_scroll.h"

#include <algorithm>

#include "views/poster_size.h"

namespace zq {
namespace {

constexpr int kHalfPoster = ZQACPosterImageWidth / 2;

}  // namespace

StripScroll::StripScroll(float viewWidth, std::size_t clipCount)
    : viewWidth_(viewWidth), fullWidth_(static_cast<float>(clipCount) * ZQACPosterImageWidth) {}

float StripScroll::centred() const {
  return viewWidth_ > fullWidth_ ? (viewWidth_ - fullWidth_) * 0.5F : 0;
}

float StripScroll::withPosterAt(std::int32_t index, float offsetFromMiddle) const {
  const auto posterPlace = static_cast<float>(std::int64_t{index} * ZQACPosterImageWidth);
  const float first = viewWidth_ * 0.5F + offsetFromMiddle - kHalfPoster - posterPlace;
  return first > 0 ? 0 : std::max(first, viewWidth_ - fullWidth_);
}

float StripScroll::withinEnds(float position) const {
  return std::min(std::max(position, viewWidth_ - fullWidth_), 0.0F);
}

float nextGlideOffset(float offset, double elapsed) {
  const auto next = static_cast<float>(offset * (1 - elapsed));
  if (offset > 0) return std::max(next, 0.0F);
  return std::min(next, 0.0F);
}

}  // namespace zq
