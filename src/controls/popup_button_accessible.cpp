#include "controls/popup_button_accessible.h"

#include <QAbstractItemView>

#include "controls/popup_button.h"

namespace zq {

PopupButtonAccessible::PopupButtonAccessible(ZQAccuratePopupButton* popUp)
    : QAccessibleWidget(popUp, QAccessible::ComboBox) {}

ZQAccuratePopupButton& PopupButtonAccessible::popUp() const {
  return *static_cast<ZQAccuratePopupButton*>(widget());
}

QAccessibleInterface* PopupButtonAccessible::child(int index) const {
  return index == 0 ? QAccessible::queryAccessibleInterface(popUp().view()) : nullptr;
}

int PopupButtonAccessible::indexOfChild(const QAccessibleInterface* child) const {
  return child != nullptr && child->object() == popUp().view() ? 0 : -1;
}

QString PopupButtonAccessible::text(QAccessible::Text text) const {
  const QString chosen = popUp().currentText();
  if (text == QAccessible::Value) return chosen;
  if (text != QAccessible::Name || chosen.isEmpty()) return QAccessibleWidget::text(text);
  return popUp().accessibleName().isEmpty() ? chosen : popUp().accessibleName() + ": " + chosen;
}

QAccessible::State PopupButtonAccessible::state() const {
  QAccessible::State state = QAccessibleWidget::state();
  state.expandable = true;
  state.expanded = popUp().view()->isVisible();
  return state;
}

QStringList PopupButtonAccessible::actionNames() const {
  QStringList names = QAccessibleWidget::actionNames();
  if (popUp().isEnabled()) names = QStringList{showMenuAction(), pressAction()} + names;
  return names;
}

void PopupButtonAccessible::doAction(const QString& action) {
  if (action != showMenuAction() && action != pressAction()) {
    QAccessibleWidget::doAction(action);
    return;
  }
  if (!popUp().isEnabled()) return;
  if (popUp().view()->isVisible()) {
    popUp().hidePopup();
  } else {
    popUp().showPopup();
  }
}

QStringList PopupButtonAccessible::keyBindingsForAction(const QString& action) const {
  return action == showMenuAction() || action == pressAction() ? QStringList()
                                                               : QAccessibleWidget::keyBindingsForAction(action);
}

}  // namespace zq
