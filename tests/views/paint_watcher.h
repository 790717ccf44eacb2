#pragma once
// Which parts of a widget on the screen are drawn anew.

#include <QCoreApplication>
#include <QEvent>
#include <QPaintEvent>
#include <QRect>
#include <QWidget>
#include <utility>
#include <vector>

namespace zq::test {

/// The parts of a shown widget that were drawn anew, one for each paint event.
class PaintWatcher : public QObject {
 public:
  explicit PaintWatcher(QWidget& widget) : widget_(widget) {
    widget_.installEventFilter(this);
    widget_.show();
    takeAreas();
  }

  std::vector<QRect> takeAreas() {
    QCoreApplication::processEvents();
    return std::exchange(areas_, {});
  }

 protected:
  bool eventFilter(QObject* /*watched*/, QEvent* event) override {
    if (event->type() == QEvent::Paint) areas_.push_back(static_cast<QPaintEvent*>(event)->rect());
    return false;
  }

 private:
  QWidget& widget_;
  std::vector<QRect> areas_;
};

}  // namespace zq::test
