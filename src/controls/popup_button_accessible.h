#pragma once
// What assistive programs see of a pop-up.

#include <QAccessibleWidget>

namespace zq {

class ZQAccuratePopupButton;

/// A combo box whose only child is its menu. Qt names one by what is chosen in it, and so hides what is chosen there.
class PopupButtonAccessible final : public QAccessibleWidget {
 public:
  explicit PopupButtonAccessible(ZQAccuratePopupButton* popUp);

  int childCount() const override { return 1; }
  QAccessibleInterface* child(int index) const override;
  int indexOfChild(const QAccessibleInterface* child) const override;

  /// The name is "Compression: None", its own and what is chosen.
  QString text(QAccessible::Text text) const override;
  QAccessible::State state() const override;
  /// Show the menu, or hide it; nothing while it is disabled.
  QStringList actionNames() const override;
  void doAction(const QString& action) override;
  QStringList keyBindingsForAction(const QString& action) const override;

 private:
  ZQAccuratePopupButton& popUp() const;
};

}  // namespace zq
