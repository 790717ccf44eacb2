#pragma once
// The dark ground that panels lie on.

#include <QColor>
#include <QWidget>
#include <memory>

namespace zq {

/// Main thread only.
class ZQCaptureBackgroundView : public QWidget {
  Q_OBJECT

 public:
  explicit ZQCaptureBackgroundView(QWidget* parent = nullptr) : QWidget(parent) {}
  static std::unique_ptr<ZQCaptureBackgroundView> backgroundViewWithFrame(const QRect& frame);

  /// Not valid when none is set.
  const QColor& customColor() const { return customColor_; }
  /// A colour that is not valid takes the custom one away. Spelled as interface files and callers have it.
  void setBackgroudColor(const QColor& color);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QColor customColor_;
};

}  // namespace zq
