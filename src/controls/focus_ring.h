#pragma once
// Shows which control the keyboard works on.

class QFocusEvent;
class QPainter;
class QWidget;

namespace zq {

/// A control's own: the control passes on its focus events, and draws the ring over everything else. The ring shows
/// unless the mouse brought the focus; who clicks sees where he clicked.
class FocusRing {
 public:
  void focusIn(const QFocusEvent& event);
  void focusOut(const QFocusEvent& event);
  /// One point wide, inside the control.
  void draw(QPainter& painter, const QWidget& control) const;

 private:
  bool focused_ = false;
  bool byMouse_ = false;
};

}  // namespace zq
