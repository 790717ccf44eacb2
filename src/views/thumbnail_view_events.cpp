// What the user does to the strip: the pointer, the wheel, tool tips.

#include <QEnterEvent>
#include <QHelpEvent>
#include <QMouseEvent>
#include <QToolTip>
#include <QWheelEvent>
#include <cmath>
#include <cstdlib>
#include <mutex>

#include "views/clip_tool_tip.h"
#include "views/poster_size.h"
#include "views/thumbnail_view.h"
#include "views/view_coordinates.h"

namespace zq {
namespace {

/// What QWheelEvent counts for one notch.
constexpr float kNotch = 120;

}  // namespace

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

// Wheels with fine steps send parts of a notch; the strip moves by whole points, which keep the posters sharp. On a
// touch pad fingers go along both axes: the larger way is meant.
void ZQACThumbnailView::wheelEvent(QWheelEvent* event) {
  const QPoint angle = event->angleDelta();
  const auto delta = static_cast<float>(std::abs(angle.x()) > std::abs(angle.y()) ? angle.x() : angle.y());
  unscrolled_ += delta / kNotch * ZQACPosterImageWidth;
  const float whole = std::trunc(unscrolled_);
  unscrolled_ -= whole;
  event->setAccepted(scrollBy(whole));
  if (!event->isAccepted()) unscrolled_ = 0;
}

bool ZQACThumbnailView::event(QEvent* event) {
  if (event->type() != QEvent::ToolTip) return QWidget::event(event);
  const auto& help = static_cast<const QHelpEvent&>(*event);
  const ClipValue clip = clipShownAt(toPoint(help.pos()));
  const QString text = clip ? clipToolTip(*clip) : QString();
  const QRect place = clip ? wholePointsInView(clip->posterImagePos(), size()) : QRect();
  QToolTip::showText(help.globalPos(), text, this, place);  // an empty one hides the last
  event->setAccepted(!text.isEmpty());
  return true;
}

// A glance at a poster, unlike a pick, does not end a glide; and posters that are not shown have no tool tip.
ClipValue ZQACThumbnailView::clipShownAt(Point point) const {
  const SequenceValue sequence = activeSequence();
  if (!sequence) return nullptr;
  for (const ClipValue& clip : sequence->allClips()) {
    if (clip->isInTrash()) break;
    if (contains(clip->posterImagePos(), point.x, point.y)) return clip;
  }
  return nullptr;
}

ZQACThumbnailView::Point ZQACThumbnailView::toPoint(const QPointF& position) const {
  return {static_cast<float>(position.x()), fromQtEvent(position.y(), height())};
}

}  // namespace zq
