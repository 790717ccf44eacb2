#include "views/timecode_and_date_view.h"

#include <gtest/gtest.h>

#include <QFontMetricsF>
#include <QLocale>
#include <QPainter>
#include <algorithm>
#include <memory>

#include "support/qt_application.h"
#include "views/medium_date.h"
#include "views/paint_watcher.h"
#include "views/timecode_label.h"
#include "views/timeline_fixture.h"

namespace zq::test {
namespace {

const QColor kGreen(26, 128, 51);
const QColor kBehind(Qt::magenta);
/// Where the labels' fills are, inside of their lines; from the upper left of a view of 640 x 480.
const QRect kTimecodeFill(15, 13, 62, 9);
const QRect kDateFill(95, 13, 72, 9);

class TimecodeAndDateViewTest : public QtTest, public testing::WithParamInterface<int> {
 protected:
  TimecodeAndDateViewTest() {
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    view_.resize(640, 480);
  }

  QImage drawn() {
    QImage image(view_.size() * GetParam(), QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(GetParam());
    image.fill(kBehind);
    view_.render(&image);
    return image;
  }
  static bool isBright(const QColor& color) { return color.red() > 180 && color.green() > 180 && color.blue() > 180; }
  /// How many of the pixels in this part, in points, are bright: text.
  static int brightPixels(const QImage& image, const QRect& part) {
    const int scale = static_cast<int>(image.devicePixelRatio());
    int count = 0;
    for (int y = part.top() * scale; y <= part.bottom() * scale; ++y) {
      for (int x = part.left() * scale; x <= part.right() * scale; ++x) {
        if (isBright(image.pixelColor(x, y))) ++count;
      }
    }
    return count;
  }
  /// The picture with a label's ground drawn anew, and this text on it.
  static QImage withText(QImage image, const QRect& label, const QColor& ground, const QString& text) {
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setFont(labelFont());
    painter.fillRect(label.adjusted(5, 3, -5, -3), ground);
    painter.setPen(Qt::white);
    painter.drawText(QRectF(label), Qt::AlignCenter | Qt::TextSingleLine, text);
    return image;
  }
  static QImage partOf(const QImage& image, const QRect& part) {
    const int scale = static_cast<int>(image.devicePixelRatio());
    return image.copy(part.x() * scale, part.y() * scale, part.width() * scale, part.height() * scale);
  }

  backend::VirtualRuntime runtime_;
  ZQTimecodeAndDateView view_{runtime_};
};

INSTANTIATE_TEST_SUITE_P(PixelsAPoint, TimecodeAndDateViewTest, testing::Values(1, 2),
                         testing::PrintToStringParamName());

TEST_P(TimecodeAndDateViewTest, DrawsABlackAndAGreenLabelWithWhiteLinesAtTheTopLeft) {
  const QImage image = drawn();
  EXPECT_EQ(colorAt(image, 14, 17), QColor(Qt::black));
  EXPECT_EQ(colorAt(image, 130, 17), kGreen);
  for (const double x : {9.0, 10.0, 81.0, 82.0, 89.0, 90.0, 171.0, 172.0}) {
    EXPECT_TRUE(isBright(colorAt(image, x, 17))) << x;
  }
  for (const double y : {9.0, 10.0, 24.0, 25.0}) {
    EXPECT_TRUE(isBright(colorAt(image, 46, y))) << y;
    EXPECT_TRUE(isBright(colorAt(image, 130, y))) << y;
  }
}

TEST_P(TimecodeAndDateViewTest, LeavesThePictureBelowAsItIsEverywhereElse) {
  const QImage image = drawn();
  EXPECT_EQ(colorAt(image, 8, 17), kBehind);
  EXPECT_EQ(colorAt(image, 83, 17), kBehind);
  EXPECT_EQ(colorAt(image, 88, 17), kBehind);
  EXPECT_EQ(colorAt(image, 173, 17), kBehind);
  EXPECT_EQ(colorAt(image, 46, 8), kBehind);
  EXPECT_EQ(colorAt(image, 46, 26), kBehind);
  EXPECT_EQ(colorAt(image, 9, 9), kBehind) << "the corners are round";
  EXPECT_EQ(colorAt(image, 300, 300), kBehind);
}

TEST_P(TimecodeAndDateViewTest, LabelsStandAboveTheLowerEdge) {
  view_.resize(640, 600);
  const QImage image = drawn();
  EXPECT_EQ(colorAt(image, 14, 137), QColor(Qt::black));
  EXPECT_EQ(colorAt(image, 14, 17), kBehind);
}

TEST_P(TimecodeAndDateViewTest, ShowsZerosAndAnEmptyGreenBoxAtFirst) {
  const QImage image = drawn();
  EXPECT_GT(brightPixels(image, kTimecodeFill), 20);
  EXPECT_EQ(brightPixels(image, kDateFill), 0);
  EXPECT_EQ(view_.timecode(), nullTimecode);
  EXPECT_EQ(view_.date(), nullptr);
  view_.setTimecode(nullTimecode);
  EXPECT_EQ(drawn(), image);
}

TEST_P(TimecodeAndDateViewTest, ShowsTheTimecodeAndTheDate) {
  const QImage before = drawn();
  view_.setTimecode(palTimecode(12345));
  view_.setDate(dateAfter(0));
  const QImage after = drawn();
  EXPECT_NE(partOf(after, kTimecodeFill), partOf(before, kTimecodeFill));
  EXPECT_GT(brightPixels(after, kDateFill), 20);
  EXPECT_EQ(view_.timecode(), palTimecode(12345));
  view_.setDate(nullptr);
  EXPECT_EQ(brightPixels(drawn(), kDateFill), 0);
}

TEST_P(TimecodeAndDateViewTest, TextIsInTheMiddleOfItsLabel) {
  view_.setTimecode(nullTimecode);
  view_.setDate(dateAfter(0));
  const QImage image = drawn();
  for (const QRect& fill : {kTimecodeFill, kDateFill}) {
    int left = 0;
    while (brightPixels(image, QRect(fill.left() + left, fill.top(), 1, fill.height())) == 0) ++left;
    int right = 0;
    while (brightPixels(image, QRect(fill.right() - right, fill.top(), 1, fill.height())) == 0) ++right;
    EXPECT_NEAR(left, right, 2);
  }
}

TEST_P(TimecodeAndDateViewTest, ShowsNothingButTheFourFieldsOfTheTimecode) {
  SMPTETime time = palTimecode(12345);
  view_.setTimecode(time);
  const QImage before = drawn();
  time.mSubframes = 5;
  time.mCounter = 9;
  time.mFlags = 3;
  time.mType = 2;
  view_.setTimecode(time);
  EXPECT_EQ(drawn(), before);
}

TEST_P(TimecodeAndDateViewTest, ManyHoursHaveMoreDigits) {
  SMPTETime time;
  time.mHours = 99;
  view_.setTimecode(time);
  const int two = brightPixels(drawn(), kTimecodeFill);
  time.mHours = 999;
  view_.setTimecode(time);
  EXPECT_GT(brightPixels(drawn(), kTimecodeFill), two);
}

TEST_P(TimecodeAndDateViewTest, TextThatIsTooLongIsCutAtItsTail) {
  SMPTETime time;
  time.mHours = -32768;
  time.mMinutes = -32768;
  time.mSeconds = 32767;
  time.mFrames = 1;
  const QImage empty = drawn();
  view_.setTimecode(time);
  const QImage one = drawn();
  time.mFrames = 2;
  view_.setTimecode(time);
  EXPECT_EQ(drawn(), one);
  const QRect beside(82, 0, 7, 40);
  EXPECT_EQ(partOf(one, beside), partOf(empty, beside));
  time.mHours = 12;
  view_.setTimecode(time);
  EXPECT_NE(drawn(), one) << "the head is shown";
}

TEST_P(TimecodeAndDateViewTest, ADateThatIsTooLongIsCutAtItsTail) {
  const QFontMetricsF metrics(labelFont());
  QLocale widest;
  qreal width = 0;
  for (const QLocale& locale :
       QLocale::matchingLocales(QLocale::AnyLanguage, QLocale::AnyScript, QLocale::AnyTerritory)) {
    const qreal own = metrics.horizontalAdvance(mediumDateText(*dateAfter(0), locale));
    if (own > width) widest = locale;
    width = std::max(width, own);
  }
  ASSERT_GT(width, 100);
  QLocale::setDefault(widest);
  view_.setDate(dateAfter(0));
  const QImage image = drawn();
  const QString cut = metrics.elidedText(mediumDateText(*dateAfter(0), widest), Qt::ElideRight, 82);
  EXPECT_EQ(partOf(image, kDateFill), partOf(withText(image, QRect(90, 10, 82, 15), kGreen, cut), kDateFill));
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 173 * GetParam(); x < image.width(); ++x) ASSERT_EQ(image.pixelColor(x, y), kBehind) << x << ", " << y;
  }
}

TEST_P(TimecodeAndDateViewTest, ShowsTheTextOfTheTimecode) {
  SMPTETime time;
  time.mHours = 12;
  time.mMinutes = 34;
  time.mSeconds = 56;
  time.mFrames = 7;
  view_.setTimecode(time);
  const QImage image = drawn();
  const QImage expected = withText(image, QRect(10, 10, 72, 15), Qt::black, "12:34:56.07");
  EXPECT_EQ(partOf(image, kTimecodeFill), partOf(expected, kTimecodeFill));
}

TEST_P(TimecodeAndDateViewTest, IsDrawnAnewForEachTimecodeButForANewDateOnly) {
  PaintWatcher painted(view_);
  view_.setTimecode(nullTimecode);
  EXPECT_EQ(painted.takeAreas().size(), 1U);
  view_.setTimecode(nullTimecode);
  EXPECT_EQ(painted.takeAreas().size(), 1U) << "even when it is the same";
  const DateValue date = dateAfter(0);
  view_.setDate(date);
  EXPECT_EQ(painted.takeAreas().size(), 1U);
  view_.setDate(date);
  EXPECT_EQ(painted.takeAreas().size(), 0U) << "the same object";
  view_.setDate(dateAfter(0));
  EXPECT_EQ(painted.takeAreas().size(), 1U) << "an equal one";
  view_.setDate(nullptr);
  EXPECT_EQ(painted.takeAreas().size(), 1U);
  view_.setDate(nullptr);
  EXPECT_EQ(painted.takeAreas().size(), 0U);
}

TEST_P(TimecodeAndDateViewTest, WhatAnotherThreadSetsIsDrawnByTheMainThread) {
  PaintWatcher painted(view_);
  const DateValue date = dateAfter(0);
  runtime_
      .startThread("frames",
                   [&] {
                     view_.setTimecode(palTimecode(9));
                     view_.setDate(date);
                   })
      ->join();
  EXPECT_EQ(view_.timecode(), palTimecode(9));
  EXPECT_EQ(view_.date(), date);
  EXPECT_TRUE(painted.takeAreas().empty());
  runPosted(runtime_);
  EXPECT_EQ(painted.takeAreas().size(), 1U);
}

TEST_P(TimecodeAndDateViewTest, IsHiddenAndShownFromAnyThread) {
  QWidget window;
  window.resize(640, 480);
  auto* overlay = new ZQTimecodeAndDateView(runtime_, &window);
  window.show();
  EXPECT_TRUE(overlay->isVisible());
  overlay->setHidden(true);
  EXPECT_FALSE(overlay->isVisible());
  runtime_.startThread("frames", [&] { overlay->setHidden(false); })->join();
  EXPECT_FALSE(overlay->isVisible());
  runPosted(runtime_);
  EXPECT_TRUE(overlay->isVisible());
}

TEST_P(TimecodeAndDateViewTest, WhatWasSaidLastHoldsWhicheverThreadSaidIt) {
  QWidget window;
  auto* overlay = new ZQTimecodeAndDateView(runtime_, &window);
  window.show();
  runtime_.startThread("frames", [&] { overlay->setHidden(true); })->join();
  overlay->setHidden(false);
  runPosted(runtime_);
  EXPECT_TRUE(overlay->isVisible());
}

TEST_P(TimecodeAndDateViewTest, LetsTheMouseThrough) {
  QWidget window;
  window.resize(640, 480);
  auto* overlay = new ZQTimecodeAndDateView(runtime_, &window);
  overlay->resize(640, 480);
  EXPECT_EQ(window.childAt(46, 17), nullptr);
}

TEST_P(TimecodeAndDateViewTest, WhatIsStillPostedWhenItIsDestroyedIsDropped) {
  auto view = std::make_unique<ZQTimecodeAndDateView>(runtime_);
  runtime_.startThread("frames", [&] { view->setTimecode(palTimecode(9)); })->join();
  view.reset();
  runPosted(runtime_);
}

}  // namespace
}  // namespace zq::test
