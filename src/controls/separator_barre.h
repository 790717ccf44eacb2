#pragma once
// The bar that parts one area of the recapture window from the next.

#include <QWidget>

namespace zq {

/// Main thread only.
class ZQRecaptureSeparatorBarre : public QWidget {
  Q_OBJECT

 public:
  explicit ZQRecaptureSeparatorBarre(QWidget* parent = nullptr);

 protected:
  void paintEvent(QPaintEvent* event) override;
};

}  // namespace zq
