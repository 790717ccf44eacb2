#include "controls/text_field_cell.h"

#include <QLineEdit>
#include <QPainter>

#include "controls/control_paint.h"
#include "skin/three_slices.h"

namespace zq {

namespace {

constexpr qreal kFieldCapWidth = 5;
constexpr qreal kBigHeight = 30;

const char kFieldClass[] = "ZQAccurateTextFieldCell";

struct FieldImages {
  ThreeSlices small{"textFieldLeft", "textFieldMiddle", "textFieldRight", kFieldClass};
  ThreeSlices big{"bigTextFieldLeft", "bigTextFieldMiddle", "bigTextFieldRight", kFieldClass};
};

const FieldImages& fieldImages() {
  static const FieldImages all;
  return all;
}

}  // namespace

// The slices ignore where the frame begins, so the frame must be the whole field.
void ZQAccurateTextFieldCell::drawWithFrameInView(QPainter& painter, const QRectF& frame,
                                                  const QLineEdit& /*view*/) const {
  const ThreeSlices& slices = frame.height() >= kBigHeight ? fieldImages().big : fieldImages().small;
  slices.drawStretched(painter, {0, 0, frame.width(), frame.height()}, kFieldCapWidth, kFieldCapWidth);
  if (backgroundColor().isValid()) painter.fillRect(frame, backgroundColor());
}

void ZQAccurateTextFieldCell::setUpFieldEditorAttributes(QLineEdit& editor) const {
  setFieldColors(editor, Qt::transparent, grey());
}

// Qt inverts what is under it, whatever the palette says, and tells nobody when it blinks; so this one stands still. It
// is half a point wider on either side, as Qt's may lie between two pixels.
void ZQAccurateTextFieldCell::drawInsertionPoint(QPainter& painter, const QRectF& caret) const {
  painter.fillRect(caret.adjusted(-0.5, 0, 0.5, 0), grey());
}

}  // namespace zq
