#include "controls/momentary_button_accessible.h"

#include "controls/control_paint.h"
#include "controls/momentary_button.h"

namespace zq {

MomentaryButtonAccessible::MomentaryButtonAccessible(MomentaryButton* button)
    : QAccessibleWidget(button, QAccessible::Button) {}

MomentaryButton& MomentaryButtonAccessible::button() const {
  return *static_cast<MomentaryButton*>(widget());
}

QString MomentaryButtonAccessible::text(QAccessible::Text text) const {
  const QString standard = QAccessibleWidget::text(text);
  switch (text) {
    case QAccessible::Name: {
      const QString title = withoutMnemonic(button().shownTitle());
      return button().accessibleName().isEmpty() && !title.isEmpty() ? title : standard;
    }
    case QAccessible::Description:
      return standard == this->text(QAccessible::Name) ? QString() : standard;  // nothing is read out twice
    case QAccessible::Accelerator:
      return button().shortcut().toString(QKeySequence::NativeText);
    default:
      return standard;
  }
}

QAccessible::State MomentaryButtonAccessible::state() const {
  QAccessible::State state = QAccessibleWidget::state();
  state.pressed = button().isDown();
  state.checkable = button().showsState();
  state.checked = button().isChecked();
  return state;
}

QStringList MomentaryButtonAccessible::actionNames() const {
  QStringList names = QAccessibleWidget::actionNames();
  if (button().isEnabled()) names.prepend(pressAction());
  return names;
}

void MomentaryButtonAccessible::doAction(const QString& action) {
  if (action == pressAction()) {
    button().click();
  } else {
    QAccessibleWidget::doAction(action);
  }
}

QStringList MomentaryButtonAccessible::keyBindingsForAction(const QString& action) const {
  if (action != pressAction() || button().shortcut().isEmpty()) return QAccessibleWidget::keyBindingsForAction(action);
  return {button().shortcut().toString()};
}

}  // namespace zq
