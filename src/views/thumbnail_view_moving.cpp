// How the strip is moved: by a glide to a clip that was picked, by the pointer at an edge, by the wheel.

#include <QEnterEvent>
#include <QHelpEvent>
#include <QMouseEvent>
#include <QToolTip>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>
#include <mutex>
#include <utility>

#include "views/clip_tool_tip.h"
#include "views/poster_size.h"
#include "views/strip_scroll.h"
#include "views/thumbnail_view.h"
#include "views/view_coordinates.h"

namespace zq {
namespace {

constexpr platform::Duration kTick = std::chrono::milliseconds(1);
constexpr double kMostOpaque = 0.8;
constexpr double kOpacityStep = 0.01;
/// What QWheelEvent counts for one notch.
constexpr float kNotch = 120;

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

void ZQACThumbnailView::myRelocationTimerFireMethod() {
  findFirstPosterImagePosWithActivePosterImagePos(glideOffset_);
  postRefresh();
  if (glideOffset_ == 0) {
    endGlide();
    return;
  }
  const std::chrono::duration<double> elapsed = runtime_.clock().now() - glideStart_;
  glideOffset_ = nextGlideOffset(glideOffset_, elapsed.count());
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
  if (const auto timer = std::exchange(rollingTimer_, nullptr)) timer->invalidate();
  for (const auto& timer : std::exchange(olderRollingTimers_, {})) timer->invalidate();
  postRefresh();
}

// The pointer leaves one band before it enters the other: the other way round, leaving would end what has just begun.
void ZQACThumbnailView::pointerMoved(const QPointF& position) {
  takeBounds();
  const Point point = toPoint(position);
  TrackingArea::Event left{};
  TrackingArea::Event right{};
  {
    const std::lock_guard guard(*mutex_);
    left = state_.rollingToLeftArea.pointerMoved(point.x, point.y);
    right = state_.rollingToRightArea.pointerMoved(point.x, point.y);
  }
  for (const auto event : {left, right}) {
    if (event == TrackingArea::Event::kExited) mouseExited();
  }
  for (const auto event : {left, right}) {
    if (event == TrackingArea::Event::kEntered) mouseEntered(point);
  }
}

void ZQACThumbnailView::pointerLeft() {
  TrackingArea::Event left{};
  TrackingArea::Event right{};
  {
    const std::lock_guard guard(*mutex_);
    left = state_.rollingToLeftArea.pointerLeft();
    right = state_.rollingToRightArea.pointerLeft();
  }
  for (const auto event : {left, right}) {
    if (event == TrackingArea::Event::kExited) mouseExited();
  }
}

void ZQACThumbnailView::mouseMoveEvent(QMouseEvent* event) {
  pointerMoved(event->position());
}

void ZQACThumbnailView::enterEvent(QEnterEvent* event) {
  pointerMoved(event->position());
}

void ZQACThumbnailView::leaveEvent(QEvent* /*event*/) {
  pointerLeft();
}

// A view that is taken away under the pointer is not left by it.
void ZQACThumbnailView::hideEvent(QHideEvent* /*event*/) {
  pointerLeft();
}

// Wheels with fine steps send parts of a notch; the strip moves by whole points, which keep the posters sharp.
void ZQACThumbnailView::wheelEvent(QWheelEvent* event) {
  const QPoint angle = event->angleDelta();
  const auto delta = static_cast<float>(angle.x() != 0 ? angle.x() : angle.y());
  unscrolled_ += delta / kNotch * ZQACPosterImageWidth;
  const float whole = std::trunc(unscrolled_);
  unscrolled_ -= whole;
  event->setAccepted(scrollBy(whole));
  if (!event->isAccepted()) unscrolled_ = 0;
}

/// Whether the strip may be moved.
bool ZQACThumbnailView::scrollBy(float points) {
  takeBounds();
  {
    const std::lock_guard guard(*mutex_);
    const StripScroll scroll = state_.scroll();
    if (!scroll.overflows() || !state_.isMouseDownActive) return false;
    state_.firstPosterImagePosX = scroll.withinEnds(state_.firstPosterImagePosX + points);
  }
  endGlide();
  refresh();
  return true;
}

bool ZQACThumbnailView::event(QEvent* event) {
  if (event->type() != QEvent::ToolTip) return QWidget::event(event);
  const auto& help = static_cast<const QHelpEvent&>(*event);
  const QString text = toolTipAt(toPoint(help.pos()));
  QToolTip::showText(help.globalPos(), text, this);  // an empty one hides the last
  event->setAccepted(!text.isEmpty());
  return true;
}

// A glance at a poster, unlike a pick, does not end a glide; and posters that are not shown have no tool tip.
QString ZQACThumbnailView::toolTipAt(Point point) const {
  const SequenceValue sequence = activeSequence();
  if (!sequence) return {};
  for (const ClipValue& clip : sequence->allClips()) {
    if (clip->isInTrash()) break;
    if (contains(clip->posterImagePos(), point.x, point.y)) return clipToolTip(*clip);
  }
  return {};
}

ZQACThumbnailView::Point ZQACThumbnailView::toPoint(const QPointF& position) const {
  return {static_cast<float>(position.x()), static_cast<float>(height() - position.y())};
}

}  // namespace zq
