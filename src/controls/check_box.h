#pragma once
// The panels' check box.

#include <QCheckBox>
#include <memory>

#include "controls/awakes_from_nib.h"
#include "controls/button_cell.h"
#include "controls/focus_ring.h"

namespace zq {

/// Keys, mouse, focus and signals are those of QCheckBox. Main thread only.
class ZQCaptureCheckBox : public QCheckBox, public AwakesFromNib {
  Q_OBJECT
  Q_PROPERTY(QString alternateTitle READ alternateTitle WRITE setAlternateTitle)
  Q_PROPERTY(int tag READ tag WRITE setTag)

 public:
  explicit ZQCaptureCheckBox(QWidget* parent = nullptr);

  virtual ButtonCellClass cellClass() const;
  /// Keeps state, whether it is enabled, title and whom a click tells; not the images and the alternate title.
  void awakeFromNib() override;

  QString alternateTitle() const { return cell_->alternateTitle(); }
  void setAlternateTitle(const QString& title) { cell_->setAlternateTitle(title); }
  int tag() const { return tag_; }
  void setTag(int tag) { tag_ = tag; }

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

 protected:
  bool hitButton(const QPoint& point) const override;
  void paintEvent(QPaintEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;

 private:
  std::unique_ptr<ButtonCell> cell_;
  FocusRing focusRing_;
  int tag_ = 0;
};

}  // namespace zq
