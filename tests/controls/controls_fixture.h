#pragma once
// A skin of flat colours, each picture's own, and what the tests of the controls ask of their pixels.

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QImage>
#include <QPalette>
#include <QString>
#include <QStringList>
#include <QWidget>
#include <array>
#include <cmath>
#include <cstdlib>
#include <functional>

#include "backends/time/real_runtime.h"
#include "skin/skin.h"
#include "support/qt_application.h"
#include "support/scratch_folder.h"

namespace zq::test {

struct FlatPicture {
  const char* name;
  int width;
  int height;
};

inline constexpr std::array kFlatPictures{FlatPicture{"univButtonLeft", 6, 20},
                                          FlatPicture{"univButtonMiddle", 1, 20},
                                          FlatPicture{"univButtonRight", 8, 20},
                                          FlatPicture{"univButtonLeftClicked", 6, 20},
                                          FlatPicture{"univButtonMiddleClicked", 1, 20},
                                          FlatPicture{"univButtonRightClicked", 8, 20},
                                          FlatPicture{"recordingIcon", 4, 4},
                                          FlatPicture{"recordingIconHL", 4, 4},
                                          FlatPicture{"checkBoxOff", 13, 14},
                                          FlatPicture{"checkBoxOn", 13, 14},
                                          FlatPicture{"popupButtonLeft", 7, 20},
                                          FlatPicture{"popupButtonMiddle", 1, 20},
                                          FlatPicture{"popupButtonRight", 15, 20},
                                          FlatPicture{"sliderTrackLeft", 4, 6},
                                          FlatPicture{"sliderTrackMiddle", 1, 6},
                                          FlatPicture{"sliderTrackRight", 4, 6},
                                          FlatPicture{"sliderKnob", 10, 10},
                                          FlatPicture{"sliderKnobAvecTick", 10, 10},
                                          FlatPicture{"textFieldLeft", 5, 22},
                                          FlatPicture{"textFieldMiddle", 1, 22},
                                          FlatPicture{"textFieldRight", 5, 22},
                                          FlatPicture{"bigTextFieldLeft", 5, 30},
                                          FlatPicture{"bigTextFieldMiddle", 1, 30},
                                          FlatPicture{"bigTextFieldRight", 5, 30},
                                          FlatPicture{"univBoxShadow", 9, 9},
                                          FlatPicture{"controlPanelBG", 1, 48},
                                          FlatPicture{"controlPanelBGClicked", 1, 48},
                                          FlatPicture{"controlPanelLeft", 11, 48},
                                          FlatPicture{"controlPanelLeftClicked", 11, 48},
                                          FlatPicture{"controlPanelRight", 11, 48},
                                          FlatPicture{"controlPanelRightClicked", 11, 48},
                                          FlatPicture{"controlPanelSeparator", 1, 48},
                                          FlatPicture{"controlPanelRewind", 40, 48},
                                          FlatPicture{"controlPanelRewindRollOver", 40, 48},
                                          FlatPicture{"controlPanelPlay", 40, 48},
                                          FlatPicture{"controlPanelPlayRollOver", 40, 48},
                                          FlatPicture{"controlPanelRecord", 40, 48},
                                          FlatPicture{"controlPanelRecordRollOver", 40, 48},
                                          FlatPicture{"controlPanelStop", 40, 48},
                                          FlatPicture{"controlPanelStopRollOver", 40, 48},
                                          FlatPicture{"controlPanelFastForward", 40, 48},
                                          FlatPicture{"controlPanelFastForwardRollOver", 40, 48},
                                          FlatPicture{"controlPanelPreviousFrame", 40, 48},
                                          FlatPicture{"controlPanelPreviousFrameRO", 40, 48},
                                          FlatPicture{"controlPanelNextFrame", 40, 48},
                                          FlatPicture{"controlPanelNextFrameRO", 40, 48}};

/// The picture's colour; none has another's, and none is grey, white or black.
inline QColor flat(const QString& name) {
  for (std::size_t i = 0; i < kFlatPictures.size(); ++i) {
    const int number = static_cast<int>(i);
    if (name == kFlatPictures[i].name)
      return {30 + 44 * (number % 5), 20 + 44 * (number / 5 % 5), 255 - 60 * (number / 25)};
  }
  ADD_FAILURE() << "no picture " << name.toStdString();
  return {};
}

inline testing::AssertionResult isNear(const QColor& color, const QColor& expected, int tolerance = 3) {
  const bool near = std::abs(color.red() - expected.red()) <= tolerance &&
                    std::abs(color.green() - expected.green()) <= tolerance &&
                    std::abs(color.blue() - expected.blue()) <= tolerance;
  if (near) return testing::AssertionSuccess();
  return testing::AssertionFailure() << color.name().toStdString() << " is not " << expected.name().toStdString();
}

/// Of the pixel at a point whose origin is the upper left corner.
inline testing::AssertionResult isColorAt(const QImage& image, qreal x, qreal y, const QColor& expected) {
  return isNear(colorAt(image, x, y), expected) << " at " << x << ", " << y;
}

/// The colour over black.
inline QColor faded(const QColor& color, qreal opacity) {
  const auto part = [&](int value) { return static_cast<int>(std::lround(value * opacity)); };
  return {part(color.red()), part(color.green()), part(color.blue())};
}

/// Around the pixels that differ, in points; empty when the pictures are the same.
inline QRectF differenceOf(const QImage& one, const QImage& other) {
  QRect box;
  for (int y = 0; y < one.height(); ++y) {
    for (int x = 0; x < one.width(); ++x) {
      if (one.pixel(x, y) != other.pixel(x, y)) box |= QRect(x, y, 1, 1);
    }
  }
  const qreal scale = one.devicePixelRatio();
  return {box.x() / scale, box.y() / scale, box.width() / scale, box.height() / scale};
}

/// Whether some pixel within the rectangle, in points, is of about this colour.
inline bool hasColor(const QImage& image, const QRectF& area, const QColor& color, int tolerance = 24) {
  const qreal step = 1 / image.devicePixelRatio();
  for (qreal y = area.top(); y < area.bottom(); y += step) {
    for (qreal x = area.left(); x < area.right(); x += step) {
      if (isNear(colorAt(image, x, y), color, tolerance)) return true;
    }
  }
  return false;
}

/// Tests of controls in the skin of flat colours.
class ControlsTest : public QtTest {
 protected:
  ControlsTest() {
    QPalette dark;
    dark.setColor(QPalette::Window, Qt::black);
    QApplication::setPalette(dark);
    for (const FlatPicture& picture : kFlatPictures) {
      QImage image(picture.width, picture.height, QImage::Format_RGB32);
      image.fill(flat(picture.name));
      write(picture.name, image);
    }
    EXPECT_TRUE(Skin::current().setFolder(QString::fromStdString(folder_.path())).ok());
  }
  ~ControlsTest() override {
    QApplication::setPalette(QPalette());
    (void)Skin::current().setFolder({});
  }

  /// Puts a picture of the test's own into the skin.
  void replacePicture(const char* name, const QImage& image) const {
    write(name, image);
    EXPECT_TRUE(Skin::current().setFolder(QString::fromStdString(folder_.path())).ok());
  }

  /// On screen, its window the active one.
  static void show(QWidget& widget) {
    widget.show();
    QApplication::setActiveWindow(widget.window());
    deliver();
  }
  /// Gives the focus to one that may have it already, from its window.
  static void focus(QWidget& widget, Qt::FocusReason reason) {
    widget.clearFocus();
    widget.setFocus(reason);
    ASSERT_TRUE(widget.hasFocus());
  }
  /// What was posted to the main thread.
  static void deliver() {
    QCoreApplication::sendPostedEvents();
    QCoreApplication::processEvents();
  }
  /// Runs it on a thread that is not the main thread, and waits for it.
  static void onAnotherThread(const std::function<void()>& run) {
    backend::RealRuntime runtime;
    runtime.startThread("other", run)->join();
  }

 private:
  void write(const char* name, const QImage& image) const {
    EXPECT_TRUE(image.save(QString::fromStdString(folder_.file(name)) + ".png"));
  }

  const ScratchFolder folder_;
};

}  // namespace zq::test
