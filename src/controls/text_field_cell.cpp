#include "controls/text_field_cell.h"

#include <QLineEdit>
#include <QPainter>
#include <QPalette>

#include "controls/control_paint.h"
#include "skin/skin_image.h"

namespace zq {

namespace {

constexpr qreal kCapWidth = 5;
constexpr qreal kBigHeight = 30;

struct Slices {
  SkinImage left;
  SkinImage middle;
  SkinImage right;
};

struct Images {
  Slices small;
  Slices big;
};

SkinImage named(const char* name) {
  return imageNamedInFrameworkForClass(name, "ZQAccurateTextFieldCell");
}

const Images& images() {
  static const Images all{{named("textFieldLeft"), named("textFieldMiddle"), named("textFieldRight")},
                          {named("bigTextFieldLeft"), named("bigTextFieldMiddle"), named("bigTextFieldRight")}};
  return all;
}

}  // namespace

void ZQAccurateTextFieldCell::drawWithFrameInView(QPainter& painter, const QRectF& frame,
                                                  const QLineEdit& /*view*/) const {
  const Slices& slices = frame.height() >= kBigHeight ? images().big : images().small;
  slices.left.draw(painter, {0, 0, kCapWidth, frame.height()});
  slices.middle.draw(painter, {kCapWidth, 0, frame.width() - 2 * kCapWidth, frame.height()});
  slices.right.draw(painter, {frame.width() - kCapWidth, 0, kCapWidth, frame.height()});
  if (backgroundColor().isValid()) painter.fillRect(frame, backgroundColor());
}

void ZQAccurateTextFieldCell::setUpFieldEditorAttributes(QLineEdit& editor) const {
  QPalette palette = editor.palette();
  palette.setColor(QPalette::Text, grey());
  editor.setPalette(palette);
}

// Qt inverts what is under it, whatever the palette says, and tells nobody when it blinks; so this one stands still. It
// is half a point wider on either side, as Qt's may lie between two pixels.
void ZQAccurateTextFieldCell::drawInsertionPoint(QPainter& painter, const QRectF& caret) const {
  painter.fillRect(caret.adjusted(-0.5, 0, 0.5, 0), grey());
}

}  // namespace zq
