#include "controls/univ_button_cell.h"

#include <QAbstractButton>
#include <QPainter>
#include <algorithm>
#include <cmath>

#include "controls/control_paint.h"
#include "skin/three_slices.h"

namespace zq {

namespace {

constexpr int kFontSize = 12;
constexpr qreal kDisabledOpacity = 0.35;
constexpr qreal kTitlePadding = 12;
constexpr qreal kIconRoom = 15;

const char kClass[] = "ZQCaptureUnivButtonCell";

struct Images {
  ThreeSlices normal{"univButtonLeft", "univButtonMiddle", "univButtonRight", kClass};
  ThreeSlices clicked{"univButtonLeftClicked", "univButtonMiddleClicked", "univButtonRightClicked", kClass};
  SkinImage recordingIcon = imageNamedInFrameworkForClass("recordingIcon", kClass);
  SkinImage recordingIconHL = imageNamedInFrameworkForClass("recordingIconHL", kClass);
};

const Images& images() {
  static const Images all;
  return all;
}

bool isCapture(const QString& title) {
  return withoutMnemonic(title) == "Capture";
}

// The caps ignore where the frame begins, so the frame must be the whole control.
void drawSlices(QPainter& painter, const ThreeSlices& slices, const QRectF& frame, qreal opacity) {
  const qreal bottom = frame.y() + frame.height();
  const qreal leftWidth = slices.left().size().width();
  const qreal rightWidth = slices.right().size().width();
  const int columns = static_cast<int>(frame.width() - leftWidth - rightWidth);
  for (int i = 0; i < columns; ++i) {
    slices.middle().drawUnscaled(painter, {frame.x() + leftWidth + i, bottom}, opacity);
  }
  slices.left().drawUnscaled(painter, {0, bottom}, opacity);
  slices.right().drawUnscaled(painter, {frame.width() - rightWidth, bottom}, opacity);
}

}  // namespace

void ZQCaptureUnivButtonCell::drawWithFrameInView(QPainter& painter, const QRectF& frame,
                                                  const QAbstractButton& view) const {
  painter.save();
  drawIAppBorderAndBackgroundWithFrameInView(painter, frame, view);
  painter.restore();
}

void ZQCaptureUnivButtonCell::drawIAppBorderAndBackgroundWithFrameInView(QPainter& painter, const QRectF& frame,
                                                                         const QAbstractButton& view) const {
  const qreal opacity = view.isEnabled() ? 1.0 : kDisabledOpacity;
  drawSlices(painter, view.isDown() ? images().clicked : images().normal, frame, opacity);

  painter.setRenderHint(QPainter::Antialiasing);
  painter.setFont(helveticaFont(kFontSize));
  painter.setPen(view.isDown() ? deviceWhite(0.3, opacity) : grey());

  const QString title = shownTitle(view);
  const QSizeF size = titleSize(painter.font(), title);
  QPointF place(frame.x() + frame.width() / 2 - size.width() / 2,
                frame.y() + frame.height() / 2 - size.height() / 2 - 1);
  if (isCapture(title)) {
    const SkinImage& icon = view.isChecked() ? images().recordingIconHL : images().recordingIcon;
    icon.draw(painter, {frame.width() - 18, frame.y() + 2, 15, 15});
    place.rx() -= kIconRoom;
  }
  drawTitle(painter, place, title);
}

// As wide as the wider of both titles, so that nothing moves when the button goes on. The icon takes its room on both
// sides, because the title that makes way for it is in the middle otherwise.
QSizeF ZQCaptureUnivButtonCell::cellSize(const QAbstractButton& view) const {
  const QFont font = helveticaFont(kFontSize);
  const QSizeF title = titleSize(font, view.text()).expandedTo(titleSize(font, alternateTitle()));
  const qreal icon = isCapture(view.text()) || isCapture(alternateTitle()) ? 2 * kIconRoom : 0;
  const QSizeF left = images().normal.left().size();
  const qreal caps = left.width() + images().normal.right().size().width();
  return {std::ceil(caps + title.width() + kTitlePadding + icon), std::max(left.height(), title.height() + 4)};
}

}  // namespace zq
