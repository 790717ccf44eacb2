#include "controls/background_view.h"

#include <QPaintEvent>
#include <QPainter>

namespace zq {

std::unique_ptr<ZQCaptureBackgroundView> ZQCaptureBackgroundView::backgroundViewWithFrame(const QRect& frame) {
  auto view = std::make_unique<ZQCaptureBackgroundView>();
  view->setGeometry(frame);
  return view;
}

void ZQCaptureBackgroundView::setBackgroudColor(const QColor& color) {
  if (customColor_ == color) return;
  customColor_ = color;
  update();
}

void ZQCaptureBackgroundView::paintEvent(QPaintEvent* event) {
  const QColor standard = QColor::fromRgbF(0.21F, 0.21F, 0.21F, 1.0F);
  QPainter painter(this);
  painter.fillRect(event->rect(), customColor_.isValid() ? customColor_ : standard);
}

}  // namespace zq
