#pragma once
// The panels' pop-up.

#include <QComboBox>
#include <QVariantMap>

#include "controls/awakes_from_nib.h"
#include "controls/focus_ring.h"
#include "outlets/pop_up.h"

namespace zq {

/// Its menu, keys, focus and signals are those of QComboBox; the wheel chooses only where the focus is. Main thread
/// only.
class ZQAccuratePopupButton : public QComboBox, public AwakesFromNib, public outlets::PopUp {
  Q_OBJECT
  Q_PROPERTY(QString alternateTitle READ alternateTitle WRITE setAlternateTitle)
  Q_PROPERTY(int tag READ tag WRITE setTag)

 public:
  explicit ZQAccuratePopupButton(QWidget* parent = nullptr);

  /// From now on an item whose text or image is changed becomes the selected one.
  void awakeFromNib() override;

  using QComboBox::addItem;
  void addItem(std::string title, std::any representedObject) override;
  void removeAllItems() override { clear(); }
  int itemCount() const override { return count(); }
  std::string itemTitleAtIndex(int index) const override;
  std::any representedObjectAtIndex(int index) const override;
  void selectItemAtIndex(int index) override;
  int indexOfSelectedItem() const override { return currentIndex(); }

  QString alternateTitle() const { return alternateTitle_; }
  void setAlternateTitle(const QString& title) { alternateTitle_ = title; }
  /// With tag 11 the title is grey.
  int tag() const { return tag_; }
  void setTag(int tag);

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

 public slots:
  /// Selects the item whose number stands under "NSMenuItemIndex"; nothing when there is none.
  void changeMenuItem(const QVariantMap& notification);
  void changeMenuItem(int index) { selectItemAtIndex(index); }

 protected:
  bool event(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;

 private:
  void itemChanged(const QModelIndex& first, const QModelIndex& last, const QList<int>& roles);
  QFont titleFont() const;
  QRectF middleRect() const;
  QRectF titleRect() const;
  bool isTitleCut() const;
  void drawSelectedItem(QPainter& painter) const;
  void drawItemTitle(QPainter& painter, const QRectF& rect) const;

  QString alternateTitle_;
  FocusRing focusRing_;
  int tag_ = 0;
};

}  // namespace zq
