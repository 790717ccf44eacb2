// How the strip is moved: by a glide to a clip that was picked, by the pointer at an edge, by the wheel.

#include <algorithm>
#include <cmath>
#include <mutex>
#include <utility>

#include "views/strip_scroll.h"
#include "views/thumbnail_view.h"
#include "views/view_coordinates.h"

namespace zq {
namespace {

constexpr platform::Duration kTick = std::chrono::milliseconds(1);
constexpr double kMostOpaque = 0.8;
constexpr double kOpacityStep = 0.01;

}  // namespace

void ZQACThumbnailView::findFirstPosterImagePosWithClipCount(int clipCount) {
  takeBounds();
  const std::lock_guard guard(*mutex_);
  const auto count = static_cast<std::size_t>(std::max(clipCount, 0));
  state_.firstPosterImagePosX = StripScroll(state_.bounds.width, count).centred();
}

void ZQACThumbnailView::findFirstPosterImagePosWithActivePosterImagePos(float offset) {
  takeBounds();
  const std::lock_guard guard(*mutex_);
  const std::int32_t index = state_.activeClip ? state_.activeClip->indexInSequence() : 0;
  state_.firstPosterImagePosX = state_.scroll().withPosterAt(index, offset);
}

// An offset that is no number would never come to an end.
void ZQACThumbnailView::triggerRelocationTimerWithOffset(float offset) {
  takeBounds();
  endGlide();
  glideOffset_ = std::isfinite(offset) ? offset : 0;
  glideStart_ = runtime_.clock().now();
  animationTimer_ =
      std::make_shared<RepeatingTimer>(runtime_.mainLoop(), kTick, [this] { myRelocationTimerFireMethod(); });
}

// The sequence may have become a shorter one on the way.
void ZQACThumbnailView::myRelocationTimerFireMethod() {
  if (centreStripThatFits()) {
    endGlide();
    postRefresh();
    return;
  }
  findFirstPosterImagePosWithActivePosterImagePos(glideOffset_);
  postRefresh();
  if (glideOffset_ == 0) {
    endGlide();
    return;
  }
  const std::chrono::duration<double> elapsed = runtime_.clock().now() - glideStart_;
  glideOffset_ = nextGlideOffset(glideOffset_, elapsed.count());
}

bool ZQACThumbnailView::centreStripThatFits() {
  takeBounds();
  const std::lock_guard guard(*mutex_);
  const StripScroll scroll = state_.scroll();
  if (scroll.overflows()) return false;
  state_.firstPosterImagePosX = scroll.centred();
  return true;
}

void ZQACThumbnailView::endGlide() {
  if (const auto timer = std::exchange(animationTimer_, nullptr)) timer->invalidate();
}

// A timer that runs already goes on, so that the strip rolls twice as fast; only the new one is known. Those that are
// not known any more stop when the pointer leaves the bands: they could not be seen to do anything but keep the machine
// awake, and would be ahead of the next entry.
void ZQACThumbnailView::triggerRollingTimer() {
  if (rollingTimer_) olderRollingTimers_.push_back(rollingTimer_);
  rollingTimer_ = std::make_shared<RepeatingTimer>(runtime_.mainLoop(), kTick, [this] { myRollingTimerFireMethod(); });
}

void ZQACThumbnailView::myRollingTimerFireMethod() {
  {
    const std::lock_guard guard(*mutex_);
    float& position = state_.firstPosterImagePosX;
    const StripScroll scroll = state_.scroll();
    const bool toLeft = state_.willRollToLeft && scroll.canRollToLeft(position);
    if (toLeft) {
      position -= StripScroll::kRollingStep;
    } else if (state_.willRollToRight && scroll.canRollToRight(position)) {
      position += StripScroll::kRollingStep;
    }
    float& transparency = state_.transparency;
    if (transparency < kMostOpaque) transparency = static_cast<float>(transparency + kOpacityStep);
  }
  postRefresh();
}

void ZQACThumbnailView::endRolling() {
  if (const auto timer = std::exchange(rollingTimer_, nullptr)) timer->invalidate();
  for (const auto& timer : std::exchange(olderRollingTimers_, {})) timer->invalidate();
}

void ZQACThumbnailView::mouseEntered(Point point) {
  {
    const std::lock_guard guard(*mutex_);
    if (!state_.isMouseDownActive) return;
    if (contains(state_.rollingToLeftArea.rect(), point.x, point.y)) {
      state_.willRollToLeft = true;
      state_.willRollToRight = false;
    } else if (contains(state_.rollingToRightArea.rect(), point.x, point.y)) {
      state_.willRollToRight = true;
      state_.willRollToLeft = false;
    }
  }
  triggerRollingTimer();
}

void ZQACThumbnailView::mouseExited() {
  {
    const std::lock_guard guard(*mutex_);
    state_.willRollToLeft = false;
    state_.willRollToRight = false;
    state_.transparency = 0;
  }
  endRolling();
  postRefresh();
}

/// Whether the strip may be moved. A turn that moves nothing leaves a glide alone.
bool ZQACThumbnailView::scrollBy(float points) {
  takeBounds();
  {
    const std::lock_guard guard(*mutex_);
    const StripScroll scroll = state_.scroll();
    if (!scroll.overflows() || !state_.isMouseDownActive) return false;
    const float position = scroll.withinEnds(state_.firstPosterImagePosX + points);
    if (std::exchange(state_.firstPosterImagePosX, position) == position) return true;
  }
  endGlide();
  refresh();
  return true;
}

}  // namespace zq
