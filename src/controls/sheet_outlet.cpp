#include "controls/sheet_outlet.h"

#include <QEvent>
#include <QKeyEvent>
#include <utility>

namespace zq {

namespace {

bool isCancel(QEvent& event) {
  if (event.type() == QEvent::Close) return true;
  return event.type() == QEvent::KeyPress && static_cast<QKeyEvent&>(event).matches(QKeySequence::Cancel);
}

}  // namespace

SheetOutlet::SheetOutlet(QDialog& dialog) : dialog_(&dialog) {
  dialog.installEventFilter(this);
  // Its own buttons may take it off the screen by themselves.
  connect(&dialog, &QDialog::finished, this, &SheetOutlet::endSheet);
}

void SheetOutlet::beginSheet(std::function<void()> didEnd) {
  endSheet();
  didEnd_ = std::move(didEnd);
  if (dialog_) dialog_->open();
}

void SheetOutlet::endSheet() {
  if (const auto didEnd = std::exchange(didEnd_, nullptr)) didEnd();
}

void SheetOutlet::orderOut() {
  if (dialog_) dialog_->hide();
}

// Of the dialog, the only one that is watched. Qt would hide it first; but whoever began the sheet is to find it
// on screen when it ends.
bool SheetOutlet::eventFilter(QObject* watched, QEvent* event) {
  if (!didEnd_ || !isCancel(*event)) return QObject::eventFilter(watched, event);
  event->ignore();
  endSheet();
  return true;
}

}  // namespace zq
