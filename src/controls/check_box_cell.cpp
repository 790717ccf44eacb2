#include "controls/check_box_cell.h"

#include <QCheckBox>
#include <QPainter>
#include <algorithm>
#include <cmath>

#include "controls/control_paint.h"
#include "skin/skin_image.h"

namespace zq {

namespace {

constexpr int kFontSize = 11;
constexpr qreal kGap = 2;

struct Images {
  SkinImage off = imageNamedInFrameworkForClass("checkBoxOff", "ZQCaptureCheckBoxCell");
  SkinImage on = imageNamedInFrameworkForClass("checkBoxOn", "ZQCaptureCheckBoxCell");
};

const Images& images() {
  static const Images all;
  return all;
}

Qt::CheckState stateOf(const QAbstractButton& view) {
  const auto* box = qobject_cast<const QCheckBox*>(&view);
  if (box != nullptr) return box->checkState();
  return view.isChecked() ? Qt::Checked : Qt::Unchecked;
}

// Between on and off there is no box, only the title, which stays where it is.
void drawBox(QPainter& painter, const QPointF& corner, Qt::CheckState state) {
  if (state == Qt::Unchecked) images().off.drawUnscaled(painter, corner);
  if (state == Qt::Checked) images().on.drawUnscaled(painter, corner);
}

qreal boxWidth(Qt::CheckState state) {
  return (state == Qt::Checked ? images().on : images().off).size().width();
}

}  // namespace

void ZQCaptureCheckBoxCell::drawWithFrameInView(QPainter& painter, const QRectF& frame,
                                                const QAbstractButton& view) const {
  painter.save();
  switch (windowStyle()) {
    case 0:
      drawIAppBorderAndBackgroundWithFrameInView(painter, frame, view);
      break;
    case 1:
      drawProBorderAndBackgroundWithFrameInView(painter, frame, view);
      break;
    default:
      break;
  }
  painter.restore();
}

void ZQCaptureCheckBoxCell::drawIAppBorderAndBackgroundWithFrameInView(QPainter& painter, const QRectF& frame,
                                                                       const QAbstractButton& view) const {
  const Qt::CheckState state = stateOf(view);
  drawBox(painter, {frame.x(), frame.y() + frame.height()}, state);
  painter.setFont(systemFont(kFontSize));
  painter.setPen(view.isEnabled() ? deviceWhite(1.0) : grey());
  const qreal height = titleSize(painter.font(), view.text()).height();
  drawTitle(painter, {frame.x() + boxWidth(state) + kGap, frame.y() + (frame.height() - height) / 2}, view.text());
}

// Both looks are the same.
void ZQCaptureCheckBoxCell::drawProBorderAndBackgroundWithFrameInView(QPainter& painter, const QRectF& frame,
                                                                      const QAbstractButton& view) const {
  drawIAppBorderAndBackgroundWithFrameInView(painter, frame, view);
}

QSizeF ZQCaptureCheckBoxCell::cellSize(const QAbstractButton& view) const {
  const QSizeF box = images().off.size().expandedTo(images().on.size());
  const QSizeF title = titleSize(systemFont(kFontSize), view.text());
  return {std::ceil(box.width() + kGap + title.width()), std::ceil(std::max(box.height(), title.height()))};
}

}  // namespace zq
