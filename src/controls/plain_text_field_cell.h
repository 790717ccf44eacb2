#pragma once
// What paints a text field, and what of its settings Qt's own line edit has no place for.

#include <QColor>
#include <QRectF>

class QLineEdit;
class QPainter;

namespace zq {

/// Text, placeholder and whether it can be edited are the field's own, so they outlive any exchange of cells. This one
/// is the platform's, and leaves the painting to Qt. Main thread only.
class PlainTextFieldCell {
 public:
  virtual ~PlainTextFieldCell() = default;

  virtual bool isSkinned() const { return false; }
  /// What lies behind the text. `frame` in the field's coordinates.
  virtual void drawWithFrameInView(QPainter& /*painter*/, const QRectF& /*frame*/, const QLineEdit& /*view*/) const {}
  /// How the text looks while it is edited, the insertion point apart.
  virtual void setUpFieldEditorAttributes(QLineEdit& /*editor*/) const {}
  /// Over the text. `caret` is where Qt shows it.
  virtual void drawInsertionPoint(QPainter& /*painter*/, const QRectF& /*caret*/) const {}

  bool isSelectable() const { return isSelectable_; }
  void setSelectable(bool selectable) { isSelectable_ = selectable; }
  /// Not valid when there is none.
  const QColor& backgroundColor() const { return backgroundColor_; }
  void setBackgroundColor(const QColor& color) { backgroundColor_ = color; }

 private:
  bool isSelectable_ = true;
  QColor backgroundColor_;
};

}  // namespace zq
