#pragma once
// Paints a check box: the box, and its title beside it.

#include "controls/button_cell.h"

namespace zq {

class ZQCaptureCheckBoxCell : public ButtonCell {
 public:
  /// Which look the window has: 0 or 1; with any other nothing is drawn.
  virtual int windowStyle() const { return 0; }

  bool isSkinned() const override { return true; }
  /// The view must be a QCheckBox.
  void drawWithFrameInView(QPainter& painter, const QRectF& frame, const QAbstractButton& view) const override;
  QSizeF cellSize(const QAbstractButton& view) const override;

 private:
  void drawIAppBorderAndBackgroundWithFrameInView(QPainter& painter, const QRectF& frame,
                                                  const QAbstractButton& view) const;
  void drawProBorderAndBackgroundWithFrameInView(QPainter& painter, const QRectF& frame,
                                                 const QAbstractButton& view) const;
};

}  // namespace zq
