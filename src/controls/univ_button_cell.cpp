#include "controls/univ_button_cell.h"

#include <QAbstractButton>
#include <QPainter>
#include <algorithm>
#include <cmath>

#include "controls/control_paint.h"
#include "skin/skin_image.h"

namespace zq {

namespace {

constexpr int kFontSize = 12;
constexpr qreal kDisabledOpacity = 0.35;
constexpr qreal kTitlePadding = 12;

struct Slices {
  SkinImage left;
  SkinImage middle;
  SkinImage right;
};

struct Images {
  Slices normal;
  Slices clicked;
  SkinImage recordingIcon;
  SkinImage recordingIconHL;
};

SkinImage named(const char* name) {
  return imageNamedInFrameworkForClass(name, "ZQCaptureUnivButtonCell");
}

const Images& images() {
  static const Images all{
      {named("univButtonLeft"), named("univButtonMiddle"), named("univButtonRight")},
      {named("univButtonLeftClicked"), named("univButtonMiddleClicked"), named("univButtonRightClicked")},
      named("recordingIcon"),
      named("recordingIconHL")};
  return all;
}

// The caps ignore where the frame begins, so the frame must be the whole control.
void drawSlices(QPainter& painter, const Slices& slices, const QRectF& frame, qreal opacity) {
  const qreal bottom = frame.y() + frame.height();
  const qreal leftWidth = slices.left.size().width();
  const qreal rightWidth = slices.right.size().width();
  const int columns = static_cast<int>(frame.width() - leftWidth - rightWidth);
  for (int i = 0; i < columns; ++i) {
    slices.middle.drawUnscaled(painter, {frame.x() + leftWidth + i, bottom}, opacity);
  }
  slices.left.drawUnscaled(painter, {0, bottom}, opacity);
  slices.right.drawUnscaled(painter, {frame.width() - rightWidth, bottom}, opacity);
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
  if (withoutMnemonic(title) == "Capture") {
    const SkinImage& icon = view.isChecked() ? images().recordingIconHL : images().recordingIcon;
    icon.draw(painter, {frame.width() - 18, frame.y() + 2, 15, 15});
    place.rx() -= 15;
  }
  drawTitle(painter, place, title);
}

// As wide as the wider of both titles, so that nothing moves when the button goes on.
QSizeF ZQCaptureUnivButtonCell::cellSize(const QAbstractButton& view) const {
  const QFont font = helveticaFont(kFontSize);
  const QSizeF title = titleSize(font, view.text()).expandedTo(titleSize(font, alternateTitle()));
  const Slices& slices = images().normal;
  const qreal caps = slices.left.size().width() + slices.right.size().width();
  return {std::ceil(caps + title.width() + kTitlePadding), std::max(slices.left.size().height(), title.height() + 4)};
}

}  // namespace zq
