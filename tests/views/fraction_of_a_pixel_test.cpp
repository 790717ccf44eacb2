// What timeline and strip look like where a point is no whole number of pixels.

#include <gtest/gtest.h>

#include <QPainter>
#include <cmath>
#include <string>
#include <vector>

#include "views/pixel_grid.h"
#include "views/strip_fixture.h"
#include "views/track_row.h"

namespace zq::test {
namespace {

const QColor kGround(Qt::magenta);

/// A picture of the widget's own drawing on a ground of another colour.
QImage drawnOnGround(QWidget& widget, qreal scale) {
  const QSizeF size = QSizeF(widget.size()) * scale;
  QImage image(static_cast<int>(std::ceil(size.width())), static_cast<int>(std::ceil(size.height())),
               QImage::Format_ARGB32_Premultiplied);
  image.setDevicePixelRatio(scale);
  image.fill(kGround);
  widget.render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
  return image;
}

TEST(PixelGridTest, MovesEdgesToTheNearestPixelTheHigherOneOfTwo) {
  QImage image(100, 100, QImage::Format_ARGB32_Premultiplied);
  QPainter painter(&image);
  const PixelGrid grid(painter);
  EXPECT_EQ(grid.snapped({10, 20, 30, 40}), QRectF(10, 20, 30, 40));
  EXPECT_EQ(grid.snapped({0.5, 0.4, 10, 10.2}), QRectF(1, 0, 10, 11));
  EXPECT_EQ(grid.snapped({-0.5, -44.5, 60, 60}), QRectF(0, -44, 60, 60)) << "on both sides of 0";
}

TEST(PixelGridTest, KnowsThePixelsOfAPoint) {
  for (const qreal scale : {1.0, 1.25, 1.5, 1.75, 2.0, 3.0}) {
    QImage image(100, 100, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(scale);
    QPainter painter(&image);
    EXPECT_EQ(pixelsPerPoint(painter), scale);
    painter.rotate(90);
    EXPECT_NEAR(pixelsPerPoint(painter), scale, 1e-12);
    painter.scale(1e9, 1e9);
    EXPECT_EQ(pixelsPerPoint(painter), 16) << "no wild number asks for wild memory";
    painter.resetTransform();
    painter.scale(0, 0);
    EXPECT_EQ(pixelsPerPoint(painter), 0.125);
  }
}

class FractionOfAPixel : public testing::WithParamInterface<double> {
 protected:
  static qreal scale() { return GetParam(); }
};

class TimelineFractionTest : public TimelineTest, public FractionOfAPixel {};

INSTANTIATE_TEST_SUITE_P(PixelsAPoint, TimelineFractionTest, testing::Values(1.0, 1.25, 1.5, 1.75, 2.0));

TEST_P(TimelineFractionTest, NoGroundShowsBetweenTheSlicesOfTheFrame) {
  for (const int width : {217, 218, 219, 331}) {
    view_.resize(width, 46);
    show(makeTimelineTape({}));
    const QImage image = drawnOnGround(view_, scale());
    for (const int row : {1, image.height() / 2}) {
      for (int x = 0; x + 1 < image.width(); ++x) {
        ASSERT_EQ(image.pixelColor(x, row), QColor(Qt::red)) << x << " of " << image.width();
      }
    }
  }
}

TEST_P(TimelineFractionTest, TheEdgesOfTheTrackAndOfItsShadowAreSharp) {
  for (const char* shadow : {"none", "#0000ff"}) {
    skin_.addFlat("timelineShadow", shadow);
    skin_.install();
    show(makeTimelineTape({{{.frames = 100, .marked = true}}}));
    const QImage image = drawnOnGround(view_, scale());
    const QColor track = shadow == std::string("none") ? QColor(78, 97, 119) : QColor(shadow);
    const int column = image.width() / 2;
    for (int y = 0; y + 1 < image.height(); ++y) {
      const QColor color = image.pixelColor(column, y);
      EXPECT_TRUE(color == QColor(Qt::red) || color == track) << y << ": " << color.name().toStdString();
    }
  }
}

TEST_P(TimelineFractionTest, ThePixelsOfTheTracksRowAreTheScreens) {
  for (const int width : {217, 218, 219, 331}) {
    QImage image(static_cast<int>(std::ceil(width * scale())), 10, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(scale());
    image.fill(kGround);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    TrackRow row(static_cast<float>(width), scale());
    for (int pixel = 0; pixel < image.width(); pixel += 2) {
      row.fill(pixel / scale(), (pixel + 1) / scale(), Qt::green);
    }
    row.draw(painter, QRectF(0, 0, width, 10 / scale()));
    painter.end();
    for (int x = 0; x < image.width(); ++x) {
      const QColor color = image.pixelColor(x, 5);
      ASSERT_TRUE(x % 2 == 0 ? color.green() > 250 : color == kGround)
          << x << " of " << image.width() << ": " << color.name().toStdString();
    }
  }
}

class StripFractionTest : public StripTest, public FractionOfAPixel {
 protected:
  /// Where the columns of this row begin that are not ground, and where they end.
  static std::vector<int> edges(const QImage& image, int row) {
    std::vector<int> found;
    for (int x = 1; x < image.width(); ++x) {
      const bool before = image.pixelColor(x - 1, row) == kGround;
      if (before != (image.pixelColor(x, row) == kGround)) found.push_back(x);
    }
    return found;
  }
};

INSTANTIATE_TEST_SUITE_P(PixelsAPoint, StripFractionTest, testing::Values(1.0, 1.25, 1.5, 1.75, 2.0));

TEST_P(StripFractionTest, NoGroundShowsBetweenTheSlicesOfABar) {
  for (const int width : {300, 301, 331}) {
    view_.resize(width, kHeight);
    show(makeStrip({{.marked = true}, {.marked = true, .frames = 300}}, std::to_string(width)));
    clip(0)->setRecaptureFinished(true);
    view_.setClipBeingRecap(clip(1));
    view_.setCursorTimecode(palTimecode(233));
    const QImage image = drawnOnGround(view_, scale());
    const int row = static_cast<int>((kHeight - 3) * scale());
    const std::vector<int> found = edges(image, row);
    ASSERT_EQ(found.size(), 4U) << "two bars, " << width;
    for (std::size_t bar = 0; bar < 2; ++bar) {
      for (int x = found[2 * bar]; x < found[2 * bar + 1]; ++x) {
        const QColor color = image.pixelColor(x, row);
        const int parts = (color.red() != 0 ? 1 : 0) + (color.green() != 0 ? 1 : 0) + (color.blue() != 0 ? 1 : 0);
        EXPECT_EQ(parts, 1) << "one slice only, at " << x << ": " << color.name().toStdString();
      }
    }
  }
}

TEST_F(StripTest, PostersAreOfOneWidthOnBothSidesOfTheLeftEdge) {
  view_.resize(331, kHeight);
  std::vector<StripClip> plans;
  plans.reserve(10);
  for (int i = 0; i < 10; ++i) plans.push_back({.poster = flatPoster(i % 2 == 0 ? Qt::red : Qt::blue)});
  show(makeStrip(plans));
  view_.setActiveClip(clip(3));
  view_.findFirstPosterImagePosWithActivePosterImagePos(0);
  ASSERT_EQ(position(), -44.5F);
  view_.setActiveClip(nullptr);
  const QImage image = drawnOnGround(view_, 1);
  std::vector<int> changes;
  for (int x = 1; x < image.width(); ++x) {
    if (image.pixelColor(x, 20) != image.pixelColor(x - 1, 20)) changes.push_back(x);
  }
  EXPECT_EQ(changes, (std::vector<int>{16, 76, 136, 196, 256, 316}));
}

TEST_F(StripTest, BarsStandUnderTheirPostersWhereTheStripIsAtPartsOfAPoint) {
  view_.resize(331, kHeight);
  show(makeStrip(std::vector<StripClip>(10, StripClip{.marked = true, .poster = flatPoster(Qt::white)})));
  view_.setActiveClip(clip(3));
  view_.findFirstPosterImagePosWithActivePosterImagePos(0);
  ASSERT_EQ(position(), -44.5F);
  view_.setActiveClip(nullptr);
  const QImage image = drawnOnGround(view_, 1);
  const int row = kHeight - 3;
  for (const int poster : {16, 76, 136}) {
    EXPECT_EQ(image.pixelColor(poster + 1, row), kGround);
    EXPECT_EQ(image.pixelColor(poster + 2, row), QColor("#400000"));
    EXPECT_EQ(image.pixelColor(poster + 3, row), QColor("#400000"));
    EXPECT_EQ(image.pixelColor(poster + 4, row), QColor("#004000"));
    EXPECT_EQ(image.pixelColor(poster + 55, row), QColor("#004000"));
    EXPECT_EQ(image.pixelColor(poster + 57, row), QColor("#000040"));
    EXPECT_EQ(image.pixelColor(poster + 58, row), kGround);
  }
}

}  // namespace
}  // namespace zq::test
