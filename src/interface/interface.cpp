#include "interface/interface.h"

#include <QDialog>
#include <algorithm>

#include "controls/panel_outlet.h"
#include "controls/sheet_outlet.h"

namespace zq {

namespace {

/// The outlet of this widget, made at the first time.
template <class Made, class Outlets, class Widget>
auto* outletOf(Outlets& outlets, Widget& widget) {
  const auto found =
      std::find_if(outlets.begin(), outlets.end(), [&](const auto& one) { return one.first == &widget; });
  if (found != outlets.end()) return found->second.get();
  return outlets.emplace_back(&widget, std::make_unique<Made>(widget)).second.get();
}

}  // namespace

// A root that was put into a window goes with that.
Interface::~Interface() {
  if (root_ != nullptr && root_->parent() == nullptr) delete root_;
}

QWidget* Interface::widget(const QString& name) const {
  if (root_ == nullptr) return nullptr;
  return root_->objectName() == name ? root_.data() : root_->findChild<QWidget*>(name);
}

outlets::Panel* Interface::panel(const QString& name) {
  QWidget* const found = widget(name);
  return found == nullptr ? nullptr : outletOf<PanelOutlet>(panels_, *found);
}

outlets::Sheet* Interface::sheet(const QString& name) {
  auto* const found = qobject_cast<QDialog*>(widget(name));
  return found == nullptr ? nullptr : outletOf<SheetOutlet>(sheets_, *found);
}

}  // namespace zq
