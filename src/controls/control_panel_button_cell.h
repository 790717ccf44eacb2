#pragma once
// Paints one segment of the transport's panel: background, icon, and a line that parts it from the next.

#include "controls/button_cell.h"

namespace zq {

class ZQAccurateControlPanelButtonCell : public ButtonCell {
 public:
  enum class Kind { kNone, kRewind, kPreviousFrame, kPlay, kStop, kRecord, kNextFrame, kFastForward };
  static Kind kindOfTag(int tag);
  /// Whether it lights up while the button is on; others do while it is pressed.
  static bool isLitByState(int tag);

  bool isSkinned() const override { return true; }
  /// By the view's tag, which must be a MomentaryButton; an unknown tag draws nothing. A button that is not enabled
  /// looks as any other.
  void drawWithFrameInView(QPainter& painter, const QRectF& frame, const QAbstractButton& view) const override;
  QSizeF cellSize(const QAbstractButton& view) const override;

  void mouseEntered(QWidget& view) override;
  void mouseExited(QWidget& view) override;
  /// Whether the pointer is over the button.
  bool isRollOver() const { return isRollOver_; }
  void setIsRollOver(bool isRollOver) { isRollOver_ = isRollOver; }

 private:
  struct View;

  // The places of backgrounds and lines are fixed; `frame` only says where the icon goes.
  void drawRewindButtonInRect(const View& view, const QRectF& frame) const;
  void drawPreviousFrameButtonInRect(const View& view, const QRectF& frame) const;
  void drawPlayButtonInRect(const View& view, const QRectF& frame) const;
  void drawStopButtonInRect(const View& view, const QRectF& frame) const;
  void drawRecordButtonInRect(const View& view, const QRectF& frame) const;
  void drawNextFrameButtonInRect(const View& view, const QRectF& frame) const;
  void drawFastForwardButtonInRect(const View& view, const QRectF& frame) const;

  bool isRollOver_ = false;
};

}  // namespace zq
