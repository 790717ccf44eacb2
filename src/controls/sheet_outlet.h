#pragma once
// A dialog that its window waits for.

#include <QDialog>
#include <QObject>
#include <QPointer>
#include <functional>

#include "outlets/sheet.h"

namespace zq {

/// Main thread only. The dialog may go first; then it is not on screen, and the sheet ends without it.
class SheetOutlet : public QObject, public outlets::Sheet {
  Q_OBJECT

 public:
  explicit SheetOutlet(QDialog& dialog);

  /// Returns at once. Its own window takes no input until the sheet is off the screen. When the user closes the dialog,
  /// by its button or the Escape key, the sheet is ended. One that was begun before is ended
  /// first.
  void beginSheet(std::function<void()> didEnd) override;
  void endSheet() override;
  void orderOut() override;

  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  QPointer<QDialog> dialog_;
  std::function<void()> didEnd_;
};

}  // namespace zq
