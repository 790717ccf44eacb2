#include "skin/skin_image.h"

#include <gtest/gtest.h>

#include <QTransform>
#include <cmath>
#include <limits>

#include "skin/skin_fixture.h"

namespace zq::test {
namespace {

constexpr qreal kNan = std::numeric_limits<qreal>::quiet_NaN();
/// How exact an opacity is when Qt has drawn with it, of 255.
constexpr qreal kQtSteps = 2;
constexpr qreal kInfinity = std::numeric_limits<qreal>::infinity();

/// Draws a red picture of 14 x 14 points, given by the test's folder, so that every pixel of the target is known.
class SkinImageTest : public SkinTest {
 protected:
  SkinImageTest() {
    write("red.svg", svgOf("#ff0000"));
    write("halves.svg",
          QByteArray("<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"10\" height=\"10\" viewBox=\"0 0 10 "
                     "10\"><rect width=\"5\" height=\"10\" fill=\"#ff0000\"/><rect x=\"5\" width=\"5\" "
                     "height=\"10\" fill=\"#0000ff\"/></svg>"));
    write("corner.svg",
          QByteArray("<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"10\" height=\"20\" viewBox=\"0 0 10 "
                     "20\"><rect width=\"5\" height=\"10\" fill=\"#00ff00\"/></svg>"));
    useFolder();
  }

  SkinImage red{QStringLiteral("red")};
  SkinImage halves{QStringLiteral("halves")};
  SkinImage corner{QStringLiteral("corner")};
};

/// Whether the pixels of the rectangle are of this colour and all others are empty.
testing::AssertionResult fillsExactly(const QImage& image, QRect pixels, QColor color) {
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) {
      const QRgb expected = pixels.contains(x, y) ? color.rgba() : qRgba(0, 0, 0, 0);
      if (image.pixel(x, y) != expected) return testing::AssertionFailure() << "at pixel " << x << ", " << y;
    }
  }
  return testing::AssertionSuccess();
}

TEST_F(SkinImageTest, FillsItsTargetAndNothingElse) {
  EXPECT_TRUE(fillsExactly(drawn(red, {40, 30}, QRectF(5, 6, 20, 10)), QRect(5, 6, 20, 10), Qt::red));
  EXPECT_TRUE(fillsExactly(drawn(red, {40, 30}, QRectF(5, 6, 20, 10), 2), QRect(10, 12, 40, 20), Qt::red));
}

TEST_F(SkinImageTest, IsScaledWithoutKeepingItsProportions) {
  const QImage wide = drawn(halves, {40, 30}, QRectF(0, 0, 40, 5));
  EXPECT_EQ(wide.pixelColor(1, 2), QColor(Qt::red));
  EXPECT_EQ(wide.pixelColor(19, 4), QColor(Qt::red));
  EXPECT_EQ(wide.pixelColor(20, 0), QColor(Qt::blue));
  EXPECT_EQ(wide.pixelColor(39, 4), QColor(Qt::blue));
}

TEST_F(SkinImageTest, StandsUpright) {
  const QImage image = drawn(corner, {10, 20}, QRectF(0, 0, 10, 20));
  EXPECT_EQ(image.pixelColor(1, 1), QColor(Qt::green));
  EXPECT_EQ(qAlpha(image.pixel(1, 18)), 0);
  EXPECT_EQ(qAlpha(image.pixel(8, 1)), 0);
}

TEST_F(SkinImageTest, StaysWithinThePixelsThatAFractionalTargetTouches) {
  for (const qreal scale : {1.0, 1.5, 2.0}) {
    for (const qreal shift : {0.1, 0.25, 0.5, 0.9}) {
      const QRectF target(5 + shift, 6 + shift, 20.3, 10.7);
      const QImage image = drawn(red, {40, 30}, target, scale);
      const QRect touched = QRectF(target.topLeft() * scale, target.size() * scale).toAlignedRect();
      for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
          if (touched.contains(x, y)) continue;
          ASSERT_EQ(qAlpha(image.pixel(x, y)), 0) << x << ", " << y << ", scale " << scale;
        }
      }
      EXPECT_EQ(image.pixelColor(touched.center()), QColor(Qt::red));
    }
  }
}

TEST_F(SkinImageTest, NeighbouringFractionalTargetsLeaveNoGap) {
  for (const qreal scale : {1.0, 1.25, 1.5, 2.0}) {
    QImage image = emptyDevice({60, 10}, scale);
    QPainter painter(&image);
    for (int i = 0; i < 40; ++i) red.draw(painter, QRectF(i * 1.3, 0, 1.3, 10));
    painter.end();
    for (int x = 0; x < static_cast<int>(52 * scale) - 1; ++x) EXPECT_EQ(image.pixelColor(x, 4), QColor(Qt::red)) << x;
  }
}

TEST_F(SkinImageTest, DrawsNothingIntoATargetThatIsNone) {
  const QRectF targets[] = {
      QRectF(),
      QRectF(5, 5, 0, 10),
      QRectF(5, 5, 10, 0),
      QRectF(15, 5, -10, 10),
      QRectF(5, 15, 10, -10),
      QRectF(kNan, 5, 10, 10),
      QRectF(5, kNan, 10, 10),
      QRectF(5, 5, kNan, 10),
      QRectF(5, 5, 10, kNan),
      QRectF(5, 5, kInfinity, 10),
      QRectF(-kInfinity, 5, 10, 10),
      QRectF(500, 500, 10, 10),
      QRectF(1e12, 1e12, 10, 10),
  };
  for (const QRectF& target : targets) EXPECT_TRUE(isEmpty(drawn(red, {30, 30}, target))) << target.x();
  EXPECT_LE(skin.cachedBytes(), 10 * 10 * 4) << "only what lies beside the device may have been rendered";
}

TEST_F(SkinImageTest, DrawsNothingThroughATransformThatFlattensIt) {
  QImage image = emptyDevice({30, 30});
  QPainter painter(&image);
  painter.scale(0, 1);
  red.draw(painter, QRectF(0, 0, 10, 10));
  painter.setTransform(QTransform(kNan, 0, 0, 1, 0, 0));
  red.draw(painter, QRectF(0, 0, 10, 10));
  painter.end();
  EXPECT_TRUE(isEmpty(image));
}

TEST_F(SkinImageTest, MultipliesItsOpacityWithThePainters) {
  EXPECT_NEAR(qAlpha(drawn(red, {10, 10}, QRectF(0, 0, 10, 10), 1, 0.35).pixel(5, 5)), 0.35 * 255, kQtSteps);
  QImage image = emptyDevice({10, 10});
  QPainter painter(&image);
  painter.setOpacity(0.5);
  red.draw(painter, QRectF(0, 0, 10, 10), 0.5);
  EXPECT_NEAR(qAlpha(image.pixel(5, 5)), 0.25 * 255, kQtSteps);
}

TEST_F(SkinImageTest, TakesOpacitiesOutsideTheirRangeAsItsEnds) {
  EXPECT_EQ(qAlpha(drawn(red, {10, 10}, QRectF(0, 0, 10, 10), 1, 218).pixel(5, 5)), 255);
  EXPECT_TRUE(isEmpty(drawn(red, {10, 10}, QRectF(0, 0, 10, 10), 1, 0)));
  EXPECT_TRUE(isEmpty(drawn(red, {10, 10}, QRectF(0, 0, 10, 10), 1, -1)));
  EXPECT_TRUE(isEmpty(drawn(red, {10, 10}, QRectF(0, 0, 10, 10), 1, kNan)));
}

TEST_F(SkinImageTest, LeavesThePainterAsItWas) {
  QImage image = emptyDevice({10, 10});
  QPainter painter(&image);
  painter.setOpacity(0.5);
  painter.setCompositionMode(QPainter::CompositionMode_Plus);
  red.draw(painter, QRectF(0, 0, 10, 10), 0.5);
  EXPECT_EQ(painter.opacity(), 0.5);
  EXPECT_EQ(painter.compositionMode(), QPainter::CompositionMode_Plus);
  EXPECT_FALSE(painter.testRenderHint(QPainter::SmoothPixmapTransform));
}

TEST_F(SkinImageTest, IsComposedSourceOverWhateverThePaintersMode) {
  QImage image = emptyDevice({10, 10});
  image.fill(Qt::green);
  QPainter painter(&image);
  painter.setCompositionMode(QPainter::CompositionMode_Plus);
  red.draw(painter, QRectF(0, 0, 10, 10));
  EXPECT_EQ(image.pixelColor(5, 5), QColor(Qt::red));
}

TEST_F(SkinImageTest, UnscaledStandsOnItsLowerLeftCorner) {
  QImage image = emptyDevice({40, 30}, 2);
  QPainter painter(&image);
  red.drawUnscaled(painter, QPointF(3, 20));
  painter.end();
  EXPECT_TRUE(fillsExactly(image, QRect(6, 12, 28, 28), Qt::red)) << "14 points wide and high";
}

TEST_F(SkinImageTest, UnscaledHonoursOpacity) {
  QImage image = emptyDevice({40, 30});
  QPainter painter(&image);
  red.drawUnscaled(painter, QPointF(3, 20), 0.35);
  EXPECT_NEAR(qAlpha(image.pixel(5, 10)), 0.35 * 255, kQtSteps);
}

TEST_F(SkinImageTest, IsRenderedForTheTransformOfThePainter) {
  QImage image = emptyDevice({40, 40}, 2);
  QPainter painter(&image);
  painter.scale(2, 1);
  halves.draw(painter, QRectF(0, 0, 10, 10));
  painter.end();
  EXPECT_EQ(skin.cachedBytes(), 40 * 20 * 4) << "the pixels of the device, neither more nor fewer";
  EXPECT_EQ(image.pixelColor(19, 5), QColor(Qt::red)) << "the edge is sharp";
  EXPECT_EQ(image.pixelColor(20, 5), QColor(Qt::blue));
}

TEST_F(SkinImageTest, IsRenderedWithEachPixelThatAFractionalTargetNeeds) {
  drawn(red, {40, 30}, QRectF(0, 0, 10.4, 7.1));
  EXPECT_EQ(skin.cachedBytes(), 11 * 8 * 4);
}

TEST_F(SkinImageTest, IsRenderedWithNoPixelMoreForTheRoundingOfASum) {
  drawn(red, {40, 30}, QRectF(0, 0, 10 + 1e-12, 10), 2);
  EXPECT_EQ(skin.cachedBytes(), 20 * 20 * 4);
}

TEST_F(SkinImageTest, IsDrawnInItsPlaceWhenItsTargetIsFarLargerThanTheDevice) {
  for (const qreal width : {20'000.0, 200'000.0}) {
    const QImage middle = drawn(halves, {40, 50}, QRectF(20 - width / 2, 0, width, 50));
    EXPECT_EQ(middle.pixelColor(1, 25), QColor(Qt::red)) << width;
    EXPECT_EQ(middle.pixelColor(38, 25), QColor(Qt::blue)) << width;
  }
  for (const qreal width : {20'000.0, 200'000.0, 1e9}) {
    const QImage left = drawn(halves, {40, 50}, QRectF(10, 0, width, 50), 2);
    EXPECT_EQ(qAlpha(left.pixel(19, 25)), 0) << width;
    EXPECT_EQ(left.pixelColor(20, 25), QColor(Qt::red)) << width;
    const QImage right = drawn(halves, {40, 50}, QRectF(30 - width, 0, width, 50), 2);
    EXPECT_EQ(right.pixelColor(59, 25), QColor(Qt::blue)) << width;
    EXPECT_EQ(qAlpha(right.pixel(60, 25)), 0) << width;
  }
}

TEST_F(SkinImageTest, IsRenderedWithNoMorePixelsThanTheCacheHolds) {
  const QImage image = drawn(red, {40, 50}, QRectF(0, 0, 200'000, 200'000));
  EXPECT_TRUE(fillsExactly(image, QRect(0, 0, 40, 50), Qt::red));
  EXPECT_GT(skin.cachedBytes(), 24 << 20);
  EXPECT_LE(skin.cachedBytes(), 32 << 20) << "and it is kept";
  ASSERT_TRUE(skin.setFolder(QString()).ok());
  drawn(SkinImage(QStringLiteral("timelineMiddle")), {40, 50}, QRectF(0, 0, 200'000, 50));
  EXPECT_EQ(skin.cachedBytes(), 8192 * 50 * 4);
}

TEST_F(SkinImageTest, WithoutANameOrAPictureIsNullAndDrawsNothing) {
  for (const SkinImage& picture : {SkinImage(), SkinImage(QStringLiteral("noSuchPicture"))}) {
    EXPECT_TRUE(picture.isNull());
    EXPECT_EQ(picture.size(), QSizeF(0, 0));
    EXPECT_TRUE(isEmpty(drawn(picture, {10, 10}, QRectF(0, 0, 10, 10))));
    QImage image = emptyDevice({10, 10});
    QPainter painter(&image);
    picture.drawUnscaled(painter, QPointF(0, 10));
    painter.end();
    EXPECT_TRUE(isEmpty(image));
  }
}

TEST_F(SkinImageTest, APictureThatIsNowhereIsToldWithItsClass) {
  EXPECT_TRUE(imageNamedInFrameworkForClass(QStringLiteral("noSuchPicture"), "ZQACTimelineView").isNull());
  ASSERT_EQ(log.lines.size(), 1U);
  EXPECT_NE(log.lines[0].find("noSuchPicture"), std::string::npos);
  EXPECT_NE(log.lines[0].find("ZQACTimelineView"), std::string::npos);
}

TEST_F(SkinImageTest, AHandleShowsTheSkinThatIsInForceWhenItDraws) {
  write("checkBoxOn.svg", svgOf("#00ff00"));
  ASSERT_TRUE(skin.setFolder(QString()).ok());
  const SkinImage box = imageNamedInFrameworkForClass(QStringLiteral("checkBoxOn"), "Test");
  const QImage ours = drawn(box, {14, 14}, QRectF(0, 0, 14, 14));
  useFolder();
  const QImage theirs = drawn(box, {14, 14}, QRectF(0, 0, 14, 14));
  EXPECT_EQ(theirs.pixelColor(7, 7), QColor(Qt::green));
  ASSERT_TRUE(skin.setFolder(QString()).ok());
  EXPECT_EQ(drawn(box, {14, 14}, QRectF(0, 0, 14, 14)), ours);
}

/// A widget that draws a picture, as all that use the skin do.
class PictureWidget : public QWidget {
 public:
  explicit PictureWidget(SkinImage picture) : picture_(std::move(picture)) { resize(20, 20); }

 protected:
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    picture_.draw(painter, QRectF(5, 5, 10, 10));
  }

 private:
  SkinImage picture_;
};

TEST_F(SkinImageTest, IsAsSharpAsTheImageThatAWidgetIsRenderedInto) {
  PictureWidget widget(halves);
  const QImage image = pictureOf(widget, 2);
  EXPECT_EQ(skin.cachedBytes(), 20 * 20 * 4);
  EXPECT_EQ(image.pixelColor(19, 20), QColor(Qt::red));
  EXPECT_EQ(image.pixelColor(20, 20), QColor(Qt::blue));
}

}  // namespace
}  // namespace zq::test
