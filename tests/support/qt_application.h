#pragma once
// One QApplication without a screen, for the tests of widgets.

#include <gtest/gtest.h>

#include <QApplication>
#include <QImage>
#include <QWidget>

namespace zq::test {

/// The application that all tests of a program share; made when it is first asked for, on the main thread.
inline QApplication& qtApplication() {
  static int count = 1;
  static char name[] = "test";
  static char* arguments[] = {name, nullptr};
  static QApplication* application = [] {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    return new QApplication(count, arguments);  // lives as long as the process: Qt's own statics outlive main()
  }();
  return *application;
}

/// A test of widgets.
class QtTest : public testing::Test {
 protected:
  QtTest() { qtApplication(); }
};

/// What the widget paints, its children included, on black; `scale` device pixels a point.
inline QImage pictureOf(QWidget& widget, qreal scale = 1.0) {
  QImage image((QSizeF(widget.size()) * scale).toSize(), QImage::Format_ARGB32_Premultiplied);
  image.setDevicePixelRatio(scale);
  image.fill(Qt::black);
  widget.render(&image);
  return image;
}

/// The colour at a point whose origin is the upper left corner.
inline QColor colorAt(const QImage& image, qreal x, qreal y) {
  const qreal scale = image.devicePixelRatio();
  return image.pixelColor(static_cast<int>(x * scale), static_cast<int>(y * scale));
}

}  // namespace zq::test
