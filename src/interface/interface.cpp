#include "interface/interface.h"

#include <QDialog>

#include "controls/panel_outlet.h"
#include "controls/sheet_outlet.h"

namespace zq {

// A root that was put into a window goes with that.
Interface::~Interface() {
  if (root_ != nullptr && root_->parent() == nullptr) delete root_;
}

QWidget* Interface::widget(const QString& name) const {
  return root_->objectName() == name ? root_.data() : root_->findChild<QWidget*>(name);
}

outlets::Panel* Interface::panel(const QString& name) {
  QWidget* const found = widget(name);
  if (found == nullptr) return nullptr;
  panels_.push_back(std::make_unique<PanelOutlet>(*found));
  return panels_.back().get();
}

outlets::Sheet* Interface::sheet(const QString& name) {
  auto* const found = qobject_cast<QDialog*>(widget(name));
  if (found == nullptr) return nullptr;
  sheets_.push_back(std::make_unique<SheetOutlet>(*found));
  return sheets_.back().get();
}

}  // namespace zq
