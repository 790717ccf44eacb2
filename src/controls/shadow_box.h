#pragma once
// A box whose border is a shadow.

#include <QGroupBox>

namespace zq {

/// The title is not painted, but assistive programs tell it. Main thread only.
class ZQAccurateShadowBox : public QGroupBox {
  Q_OBJECT

 public:
  explicit ZQAccurateShadowBox(QWidget* parent = nullptr) : QGroupBox(parent) {}

 protected:
  void paintEvent(QPaintEvent* event) override;
};

}  // namespace zq
