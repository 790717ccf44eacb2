#include "controls/momentary_button_accessible.h"

#include "controls/control_paint.h"
#include "controls/momentary_button.h"

namespace zq {

namespace {

// Owned by Qt, which asks for it by the name of each class that an object is of.
QAccessibleInterface* makeInterface(const QString& className, QObject* object) {
  if (className != MomentaryButton::staticMetaObject.className()) return nullptr;
  auto* button = dynamic_cast<MomentaryButton*>(object);
  return button != nullptr ? new MomentaryButtonAccessible(button) : nullptr;
}

}  // namespace

void MomentaryButtonAccessible::install() {
  [[maybe_unused]] static const bool once = [] {
    QAccessible::installFactory(makeInterface);
    return true;
  }();
}

MomentaryButtonAccessible::MomentaryButtonAccessible(MomentaryButton* button)
    : QAccessibleWidget(button, QAccessible::Button) {}

MomentaryButton& MomentaryButtonAccessible::button() const {
  return *static_cast<MomentaryButton*>(widget());
}

QString MomentaryButtonAccessible::text(QAccessible::Text text) const {
  const bool fromTitle = text == QAccessible::Name && button().accessibleName().isEmpty();
  const QString title = fromTitle ? withoutMnemonic(button().shownTitle()) : QString();
  return title.isEmpty() ? QAccessibleWidget::text(text) : title;
}

QAccessible::State MomentaryButtonAccessible::state() const {
  QAccessible::State state = QAccessibleWidget::state();
  state.pressed = button().isDown();
  state.checkable = true;
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
