#pragma once
// The panels' text field.

#include <QLineEdit>
#include <memory>

#include "controls/awakes_from_nib.h"
#include "controls/plain_text_field_cell.h"
#include "outlets/text_field.h"

namespace zq {

/// Text, keys, mouse, focus and signals are those of QLineEdit; no ring shows where the focus is, the insertion point
/// does, in a field that is only read too. Main thread only but for setStringValue().
class ZQAccurateTextField : public QLineEdit, public AwakesFromNib, public outlets::TextField {
  Q_OBJECT
  Q_PROPERTY(bool selectable READ isSelectable WRITE setSelectable)

 public:
  using CellClass = std::unique_ptr<PlainTextFieldCell> (*)();

  explicit ZQAccurateTextField(QWidget* parent = nullptr);

  virtual CellClass cellClass() const;
  /// Keeps text, placeholder, whether it is enabled and can be edited or selected; not the alignment and the
  /// background. Font, validator and signals are the widget's own and stay too.
  void awakeFromNib() override;

  void setStringValue(const std::string& text) override;
  void setBackgroundColor(const platform::Color& color) override;

  bool isSelectable() const { return cell_->isSelectable(); }
  /// What cannot be selected cannot be edited either, and takes neither focus nor mouse.
  void setSelectable(bool selectable);

  QSize sizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;

 private:
  QRectF caretRect() const;

  std::unique_ptr<PlainTextFieldCell> cell_;
};

}  // namespace zq
