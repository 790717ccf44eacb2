#pragma once
// Every control in every state, on one panel, a row for each.

#include <QString>
#include <QWidget>
#include <memory>
#include <vector>

namespace zq::host {

/// A control in one state, and what it is called.
struct ShownState {
  QString caption;
  QWidget* control;  // owned by the sheet once it is in it
};

struct ShownControl {
  QString title;
  std::vector<ShownState> states;
};

/// As if a user had the pointer, the mouse button or the keyboard on each: the states stay as long as nobody touches
/// them.
std::unique_ptr<QWidget> controlSheet();
/// The transport's buttons as they stand side by side: at rest, lit, pressed, under the pointer.
std::unique_ptr<QWidget> transportSheet();

}  // namespace zq::host
