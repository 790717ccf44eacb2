#include "controls/check_box.h"

#include <QFocusEvent>
#include <QPainter>

#include "controls/check_box_cell.h"

namespace zq {

ZQCaptureCheckBox::ZQCaptureCheckBox(QWidget* parent) : QCheckBox(parent), cell_(std::make_unique<ButtonCell>()) {}

ButtonCellClass ZQCaptureCheckBox::cellClass() const {
  return [] { return std::unique_ptr<ButtonCell>(std::make_unique<ZQCaptureCheckBoxCell>()); };
}

void ZQCaptureCheckBox::awakeFromNib() {
  cell_ = cellClass()();
  setIcon({});
  updateGeometry();
  update();
}

QSize ZQCaptureCheckBox::sizeHint() const {
  const QSize size = cell_->cellSize(*this).toSize();
  return size.isEmpty() ? QCheckBox::sizeHint() : size;
}

QSize ZQCaptureCheckBox::minimumSizeHint() const {
  return sizeHint();
}

// Box and title take a click, over the whole height; the empty room behind them does not.
bool ZQCaptureCheckBox::hitButton(const QPoint& point) const {
  if (!cell_->isSkinned()) return QCheckBox::hitButton(point);
  return rect().contains(point) && point.x() < cell_->cellSize(*this).width();
}

void ZQCaptureCheckBox::paintEvent(QPaintEvent* event) {
  if (!cell_->isSkinned()) {
    QCheckBox::paintEvent(event);
    return;
  }
  QPainter painter(this);
  cell_->drawWithFrameInView(painter, rect(), *this);
  focusRing_.draw(painter, *this);
}

void ZQCaptureCheckBox::focusInEvent(QFocusEvent* event) {
  focusRing_.focusIn(*event);
  QCheckBox::focusInEvent(event);
}

void ZQCaptureCheckBox::focusOutEvent(QFocusEvent* event) {
  focusRing_.focusOut(*event);
  QCheckBox::focusOutEvent(event);
}

}  // namespace zq
