#include "controls/background_view.h"

#include <gtest/gtest.h>

#include <QLabel>

#include "controls/controls_fixture.h"

namespace zq {
namespace {

using test::isColorAt;
using test::pictureOf;

const QColor kStandard(54, 54, 54);  // 0.21 of white

using BackgroundView = test::ControlsTest;

TEST_F(BackgroundView, IsDarkGrey) {
  ZQCaptureBackgroundView view;
  view.resize(30, 20);
  for (const qreal scale : {1.0, 2.0}) {
    SCOPED_TRACE(scale);
    EXPECT_TRUE(isColorAt(pictureOf(view, scale), 0.5, 0.5, kStandard));
    EXPECT_TRUE(isColorAt(pictureOf(view, scale), 29.5, 19.5, kStandard));
  }
}

TEST_F(BackgroundView, IsOfTheColorThatIsSet) {
  ZQCaptureBackgroundView view;
  view.resize(30, 20);
  EXPECT_FALSE(view.customColor().isValid());
  view.setBackgroudColor(Qt::red);
  EXPECT_EQ(view.customColor(), QColor(Qt::red));
  EXPECT_TRUE(isColorAt(pictureOf(view), 15, 10, Qt::red));
  view.setBackgroudColor({});
  EXPECT_TRUE(isColorAt(pictureOf(view), 15, 10, kStandard));
}

TEST_F(BackgroundView, FillsWhatIsRedrawnOnly) {
  ZQCaptureBackgroundView view;
  view.resize(30, 20);
  QImage picture(30, 20, QImage::Format_ARGB32_Premultiplied);
  picture.fill(Qt::blue);
  view.render(&picture, {10, 5}, QRegion(10, 5, 10, 10), QWidget::DrawChildren);
  EXPECT_TRUE(isColorAt(picture, 9, 10, Qt::blue));
  EXPECT_TRUE(isColorAt(picture, 10, 5, kStandard));
  EXPECT_TRUE(isColorAt(picture, 19, 14, kStandard));
  EXPECT_TRUE(isColorAt(picture, 20, 10, Qt::blue));
}

TEST_F(BackgroundView, LiesBehindItsSubviews) {
  ZQCaptureBackgroundView view;
  view.resize(30, 20);
  ZQCaptureBackgroundView child(&view);
  child.setGeometry(5, 5, 10, 10);
  child.setBackgroudColor(Qt::green);
  EXPECT_TRUE(isColorAt(pictureOf(view), 10, 10, Qt::green));
  EXPECT_TRUE(isColorAt(pictureOf(view), 20, 10, kStandard));
}

TEST_F(BackgroundView, IsMadeWithAFrame) {
  const auto view = ZQCaptureBackgroundView::backgroundViewWithFrame({3, 4, 50, 60});
  EXPECT_EQ(view->geometry(), QRect(3, 4, 50, 60));
}

TEST_F(BackgroundView, AsksForNoRedrawForTheColorThatItHas) {
  class Counting final : public ZQCaptureBackgroundView {
   public:
    int paints = 0;

   protected:
    void paintEvent(QPaintEvent* event) override {
      ++paints;
      ZQCaptureBackgroundView::paintEvent(event);
    }
  };
  Counting view;
  view.resize(30, 20);
  show(view);
  const int before = view.paints;
  view.setBackgroudColor(Qt::red);
  deliver();
  EXPECT_EQ(view.paints, before + 1);
  view.setBackgroudColor(Qt::red);
  deliver();
  EXPECT_EQ(view.paints, before + 1);
}

}  // namespace
}  // namespace zq
