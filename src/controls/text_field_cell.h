#pragma once
// Paints a text field's frame of three slices.

#include "controls/plain_text_field_cell.h"

namespace zq {

class ZQAccurateTextFieldCell : public PlainTextFieldCell {
 public:
  bool isSkinned() const override { return true; }
  /// From a height of 30 points on with the big slices.
  void drawWithFrameInView(QPainter& painter, const QRectF& frame, const QLineEdit& view) const override;
  /// Makes the text grey, over nothing.
  void setUpFieldEditorAttributes(QLineEdit& editor) const override;
  void drawInsertionPoint(QPainter& painter, const QRectF& caret) const override;
};

}  // namespace zq
