#include "controls/focus_ring.h"

#include <QFocusEvent>
#include <QPainter>
#include <QPainterPath>
#include <QWidget>

namespace zq {

namespace {

// While another window or a menu has the focus, the control keeps its own for when they are gone.
bool isInterruption(Qt::FocusReason reason) {
  return reason == Qt::ActiveWindowFocusReason || reason == Qt::PopupFocusReason;
}

bool isKeyboard(Qt::FocusReason reason) {
  return reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason || reason == Qt::ShortcutFocusReason;
}

}  // namespace

void FocusRing::focusIn(const QFocusEvent& event) {
  focused_ = true;
  if (!isInterruption(event.reason())) byKeyboard_ = isKeyboard(event.reason());
}

void FocusRing::focusOut(const QFocusEvent& event) {
  focused_ = false;
  if (!isInterruption(event.reason())) byKeyboard_ = false;
}

void FocusRing::draw(QPainter& painter, const QWidget& control) const {
  if (!byKeyboard_ || !focused_) return;
  const QRectF bounds = control.rect();
  QPainterPath ring;
  ring.addRect(bounds);
  ring.addRect(bounds.adjusted(1, 1, -1, -1));
  painter.fillPath(ring, QColor::fromRgbF(1.0F, 0.922F, 0.549F, 0.8F));
}

}  // namespace zq
