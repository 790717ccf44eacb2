#include "controls/focus_ring.h"

#include <QFocusEvent>
#include <QPainter>
#include <QPainterPath>
#include <QWidget>

namespace zq {

namespace {

// While another window or a menu has the focus, the control keeps its own for when they are gone. A window that comes
// for the first time gives the focus for this reason too.
bool isInterruption(Qt::FocusReason reason) {
  return reason == Qt::ActiveWindowFocusReason || reason == Qt::PopupFocusReason;
}

}  // namespace

void FocusRing::focusIn(const QFocusEvent& event) {
  focused_ = true;
  if (!isInterruption(event.reason())) byMouse_ = event.reason() == Qt::MouseFocusReason;
}

void FocusRing::focusOut(const QFocusEvent& event) {
  focused_ = false;
  if (!isInterruption(event.reason())) byMouse_ = false;
}

void FocusRing::draw(QPainter& painter, const QWidget& control) const {
  if (byMouse_ || !focused_) return;
  const QRectF bounds = control.rect();
  QPainterPath ring;
  ring.addRect(bounds);
  ring.addRect(bounds.adjusted(1, 1, -1, -1));
  painter.fillPath(ring, QColor::fromRgbF(1.0F, 0.922F, 0.549F, 0.8F));
}

}  // namespace zq
