#pragma once
// What assistive programs see of a MomentaryButton.

#include <QAccessibleWidget>

namespace zq {

class MomentaryButton;

/// A button that can be pressed and may be on. Qt would call one with a state a check box, and offer to toggle it,
/// which changes the look and tells nobody.
class MomentaryButtonAccessible final : public QAccessibleWidget {
 public:
  explicit MomentaryButtonAccessible(MomentaryButton* button);

  QString text(QAccessible::Text text) const override;
  QAccessible::State state() const override;
  QStringList actionNames() const override;
  void doAction(const QString& action) override;
  QStringList keyBindingsForAction(const QString& action) const override;

 private:
  MomentaryButton& button() const;
};

}  // namespace zq
