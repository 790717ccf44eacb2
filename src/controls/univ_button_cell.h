#pragma once
// Paints a universal button: a frame of three slices, and the title.

#include "controls/button_cell.h"

namespace zq {

class ZQCaptureUnivButtonCell : public ButtonCell {
 public:
  bool isSkinned() const override { return true; }
  void drawWithFrameInView(QPainter& painter, const QRectF& frame, const QAbstractButton& view) const override;
  QSizeF cellSize(const QAbstractButton& view) const override;

 private:
  void drawIAppBorderAndBackgroundWithFrameInView(QPainter& painter, const QRectF& frame,
                                                  const QAbstractButton& view) const;
};

}  // namespace zq
