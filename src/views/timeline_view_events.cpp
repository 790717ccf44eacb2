// What the user does, and what the system asks: drawing, mouse, keyboard, tool tips.

#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QResizeEvent>
#include <QStyle>
#include <QStyleOptionFocusRect>
#include <QToolTip>
#include <mutex>

#include "views/clip_stepping.h"
#include "views/clip_tool_tip.h"
#include "views/timeline_drawing.h"
#include "views/timeline_view.h"

namespace zq {
namespace {

QString nameOf(const ZQACClip& clip) {
  return QString::fromStdString(clip.clipName());
}

/// The day and the time, as the camcorder showed them; empty for an undated clip.
QString dateOf(const ZQACClip& clip) {
  if (!clip.dateStartClip()) return {};
  return QString::fromStdString(clip.dateStartClip()->isoString()).replace(u'T', u' ');
}

ClipValue clipOfSequenceAt(const ZQACSequence& sequence, ZQACTimelineView::Point point) {
  for (const ClipValue& clip : sequence.allClips()) {
    if (contains(clip->posInTimeline(), point.x, point.y)) return clip;
  }
  return nullptr;
}

std::optional<ClipStep> stepOfKey(const QKeyEvent& event) {
  if ((event.modifiers() & ~Qt::KeypadModifier) != Qt::NoModifier) return std::nullopt;
  switch (event.key()) {
    case Qt::Key_Left:
      return ClipStep::kPrevious;
    case Qt::Key_Right:
      return ClipStep::kNext;
    case Qt::Key_Home:
      return ClipStep::kFirst;
    case Qt::Key_End:
      return ClipStep::kLast;
    default:
      return std::nullopt;
  }
}

}  // namespace

void ZQACTimelineView::resizeEvent(QResizeEvent* event) {
  {
    const std::lock_guard guard(*mutex_);
    bounds_ = fromQt(rect(), static_cast<float>(height()));
  }
  QWidget::resizeEvent(event);
}

void ZQACTimelineView::paintEvent(QPaintEvent* event) {
  TimelineContents contents;
  {
    const std::lock_guard guard(*mutex_);
    contents = {bounds_, currentTape_, activeClip_, cursorHeadPos_.x, cursorHeadPos_.y, cursorRect_};
  }
  const platform::Rect area = fromQt(event->rect(), contents.bounds.height);
  const bool isBlank = contents.tape == nullptr;
  const platform::Rect place = placeOfCurrentSequence();
  QPainter painter(this);
  TimelineDrawing(painter, std::move(contents)).drawRect(area);
  if (hasFocus() && !isBlank) drawFocus(painter);
  if (placeOfCurrentSequence() != place) mainThread_.post([this] { bringCursorToItsSequence(); });
}

platform::Rect ZQACTimelineView::placeOfCurrentSequence() const {
  const SequenceValue sequence = currentSequence();
  return sequence ? sequence->posInTimeline() : platform::Rect{};
}

/// The style shows it to who came here by the keyboard.
void ZQACTimelineView::drawFocus(QPainter& painter) const {
  QStyleOptionFocusRect option;
  option.initFrom(this);
  style()->drawPrimitive(QStyle::PE_FrameFocusRect, &option, &painter, this);
}

void ZQACTimelineView::mousePressEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton) {
    mouseDown(toPoint(event->position()));
  } else {
    QWidget::mousePressEvent(event);
  }
}

void ZQACTimelineView::mouseDown(Point point) {
  if (isMouseDownActive() && findClipAndSequenceForPoint(point)) myMethodeWhenClipClicked();
}

bool ZQACTimelineView::findClipAndSequenceForPoint(Point point) {
  const TapeValue tape = currentTape();
  if (!tape) return false;
  for (const SequenceValue& sequence : tape->allSequences()) {
    if (!contains(sequence->posInTimeline(), point.x, point.y)) continue;
    const SequenceValue active = currentSequence();
    if (!active || active->sequenceId() != sequence->sequenceId()) setCurrentSequence(sequence);
    if (pickClipOfCurrentSequence(point)) return true;
  }
  return false;
}

bool ZQACTimelineView::pickClipOfCurrentSequence(Point point) {
  const SequenceValue sequence = currentSequence();
  if (!sequence) return false;
  ClipValue clip = clipOfSequenceAt(*sequence, point);
  if (!clip) return false;
  setCurrentClip(std::move(clip));
  return true;
}

void ZQACTimelineView::keyPressEvent(QKeyEvent* event) {
  const std::optional<ClipStep> step = stepOfKey(*event);
  const TapeValue tape = currentTape();
  if (!step || !tape || !isMouseDownActive()) {
    QWidget::keyPressEvent(event);
    return;
  }
  const std::optional<ClipPlace> place = clipAfterStep(*tape, {currentSequence(), currentClip()}, *step);
  if (!place) return;
  setCurrentSequence(place->sequence);
  setCurrentClip(place->clip);
  myMethodeWhenClipClicked();
}

bool ZQACTimelineView::event(QEvent* event) {
  if (event->type() != QEvent::ToolTip) return QWidget::event(event);
  const auto* help = static_cast<QHelpEvent*>(event);
  const ClipValue clip = clipAt(toPoint(help->pos()));
  if (!clip) {
    QToolTip::hideText();
    return QWidget::event(event);
  }
  const QRect place = wholePointsInView(clip->posInTimeline(), size());
  QToolTip::showText(help->globalPos(), clipToolTip(*clip), this, place);
  return true;
}

/// Changes nothing, unlike a pick.
ClipValue ZQACTimelineView::clipAt(Point point) const {
  const TapeValue tape = currentTape();
  if (!tape) return nullptr;
  for (const SequenceValue& sequence : tape->allSequences()) {
    if (!contains(sequence->posInTimeline(), point.x, point.y)) continue;
    if (ClipValue clip = clipOfSequenceAt(*sequence, point)) return clip;
  }
  return nullptr;
}

void ZQACTimelineView::describeCurrentClip() {
  const ClipValue clip = currentClip();
  if (!clip) {
    setAccessibleDescription({});
  } else if (!clip->dateStartClip()) {
    setAccessibleDescription(tr("%1, undated").arg(nameOf(*clip)));
  } else {
    setAccessibleDescription(tr("%1, recorded %2").arg(nameOf(*clip), dateOf(*clip)));
  }
}

ZQACTimelineView::Point ZQACTimelineView::toPoint(const QPointF& position) const {
  return {static_cast<float>(position.x()), fromQtEvent(position.y(), height())};
}

}  // namespace zq
