#pragma once
// What an interface file became: widgets that are found by their object names.

#include <QPointer>
#include <QString>
#include <QStringList>
#include <QWidget>
#include <memory>
#include <type_traits>
#include <utility>
#include <vector>

#include "outlets/panel.h"
#include "outlets/sheet.h"

namespace zq {

/// Owns the widgets, until the root gets another parent. Main thread only.
class Interface {
 public:
  explicit Interface(std::unique_ptr<QWidget> root) : root_(root.release()) {}
  ~Interface();
  Interface(const Interface&) = delete;
  Interface& operator=(const Interface&) = delete;

  QWidget& root() const { return *root_; }

  /// The object of this name, the root included, if it is of this kind; null otherwise. A panel is any widget, a sheet
  /// any dialog; for one widget there is one of each.
  template <class Outlet>
  Outlet* outlet(const QString& name) {
    if constexpr (std::is_same_v<Outlet, outlets::Panel>) {
      return panel(name);
    } else if constexpr (std::is_same_v<Outlet, outlets::Sheet>) {
      return sheet(name);
    } else {
      return dynamic_cast<Outlet*>(widget(name));
    }
  }

  /// Points the outlet at the object of this name; null, and named by missing(), when there is none of its kind.
  template <class Outlet>
  void connect(const QString& name, Outlet*& target) {
    target = outlet<Outlet>(name);
    if (target == nullptr) missing_.append(name);
  }

  /// What connect() did not find.
  const QStringList& missing() const { return missing_; }

 private:
  QWidget* widget(const QString& name) const;
  outlets::Panel* panel(const QString& name);
  outlets::Sheet* sheet(const QString& name);

  const QPointer<QWidget> root_;
  std::vector<std::pair<QPointer<QWidget>, std::unique_ptr<outlets::Panel>>> panels_;
  std::vector<std::pair<QPointer<QWidget>, std::unique_ptr<outlets::Sheet>>> sheets_;
  QStringList missing_;
};

}  // namespace zq
