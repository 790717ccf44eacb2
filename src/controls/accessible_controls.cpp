#include "controls/accessible_controls.h"

#include <QAccessibleWidget>

#include "controls/message_text_view.h"
#include "controls/momentary_button.h"
#include "controls/momentary_button_accessible.h"
#include "controls/popup_button.h"
#include "controls/popup_button_accessible.h"
#include "controls/separator_barre.h"

namespace zq {

namespace {

template <class Control>
Control* as(const QString& className, QObject* object) {
  return className == Control::staticMetaObject.className() ? dynamic_cast<Control*>(object) : nullptr;
}

// Owned by Qt, which asks for it by the name of each class that an object is of.
QAccessibleInterface* makeInterface(const QString& className, QObject* object) {
  if (auto* button = as<MomentaryButton>(className, object)) return new MomentaryButtonAccessible(button);
  if (auto* popUp = as<ZQAccuratePopupButton>(className, object)) return new PopupButtonAccessible(popUp);
  if (auto* view = as<ZQAccurateMessageTextView>(className, object)) {
    return new QAccessibleWidget(view, QAccessible::StaticText);
  }
  if (auto* bar = as<ZQRecaptureSeparatorBarre>(className, object)) {
    return new QAccessibleWidget(bar, QAccessible::Separator);
  }
  return nullptr;
}

}  // namespace

void installAccessibleControls() {
  [[maybe_unused]] static const bool once = [] {
    QAccessible::installFactory(makeInterface);
    return true;
  }();
}

}  // namespace zq
