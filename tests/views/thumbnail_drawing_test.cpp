// What the strip looks like, pixel by pixel, at one and two device pixels a point.

#include "views/thumbnail_drawing.h"

#include <gtest/gtest.h>

#include <QPainter>
#include <QRegion>
#include <cstdlib>
#include <string>
#include <vector>

#include "views/strip_fixture.h"

namespace zq::test {
namespace {

const QColor kBlack(Qt::black);
const QColor kRed(200, 0, 0);
const QColor kBlue(0, 0, 200);

class ThumbnailDrawingTest : public StripTest, public testing::WithParamInterface<int> {
 protected:
  QImage drawn() { return draw(GetParam()); }

  /// Draws this part only, given from the upper left corner, into an image of another colour.
  QImage drawnOnly(const QRect& part) {
    QImage image(view_.size() * GetParam(), QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(GetParam());
    image.fill(Qt::magenta);
    view_.render(&image, part.topLeft(), part, QWidget::DrawChildren);
    return image;
  }
};

INSTANTIATE_TEST_SUITE_P(PixelsAPoint, ThumbnailDrawingTest, testing::Values(1, 2), testing::PrintToStringParamName());

TEST_P(ThumbnailDrawingTest, WithoutASequenceNothingIsDrawn) {
  const QImage image = drawn();
  for (int x = 0; x < 300; x += 7) EXPECT_EQ(pixel(image, x, 20), kBlack);
}

TEST_P(ThumbnailDrawingTest, DrawsThePosterWholeInItsPlace) {
  QImage quarters(100, 100, QImage::Format_RGB32);
  quarters.fill(Qt::red);
  QPainter painter(&quarters);
  painter.fillRect(50, 0, 50, 50, Qt::green);
  painter.fillRect(0, 50, 50, 50, Qt::blue);
  painter.fillRect(50, 50, 50, 50, Qt::white);
  painter.end();
  show(makeStrip({{.poster = nullptr}, {.marked = true, .poster = pngOf(quarters)}, {.poster = nullptr}}));
  const QImage image = drawn();
  // From 120 to 180 across and from 9 to 49 up.
  EXPECT_EQ(pixel(image, 122, 46), QColor(Qt::red));
  EXPECT_EQ(pixel(image, 148, 31), QColor(Qt::red));
  EXPECT_EQ(pixel(image, 152, 31), QColor(Qt::green));
  EXPECT_EQ(pixel(image, 177, 46), QColor(Qt::green));
  EXPECT_EQ(pixel(image, 122, 11), QColor(Qt::blue));
  EXPECT_EQ(pixel(image, 148, 26), QColor(Qt::blue));
  EXPECT_EQ(pixel(image, 177, 11), QColor(Qt::white));
}

TEST_P(ThumbnailDrawingTest, FramesAMarkedClipWithATranslucentLineOfTwoPoints) {
  show(makeStrip({{.marked = true, .poster = flatPoster(kRed)}}));  // from 120 to 180
  const QImage image = drawn();
  const QColor inside = over(kRed, kMarkedLine, 0.8);
  const QColor outside = over(kBlack, kMarkedLine, 0.8);
  for (const int row : {10, 25, 47}) {
    EXPECT_EQ(pixel(image, 118, row), kBlack);
    EXPECT_TRUE(isNear(pixel(image, 119, row), outside));
    EXPECT_TRUE(isNear(pixel(image, 120, row), inside));
    EXPECT_EQ(pixel(image, 121, row), kRed) << "no veil";
    EXPECT_EQ(pixel(image, 178, row), kRed);
    EXPECT_TRUE(isNear(pixel(image, 179, row), inside));
    EXPECT_TRUE(isNear(pixel(image, 180, row), outside));
    EXPECT_EQ(pixel(image, 181, row), kBlack);
  }
  EXPECT_EQ(pixel(image, 150, 7), kBlack);
  EXPECT_TRUE(isNear(pixel(image, 150, 8), outside));
  EXPECT_TRUE(isNear(pixel(image, 150, 9), inside));
  EXPECT_EQ(pixel(image, 150, 10), kRed);
  EXPECT_EQ(pixel(image, 150, 47), kRed);
  EXPECT_TRUE(isNear(pixel(image, 150, 48), inside));
  EXPECT_TRUE(isNear(pixel(image, 150, 49), outside));
  for (const int corner : {119, 180}) EXPECT_TRUE(isNear(pixel(image, corner, 8), outside)) << "drawn once";
}

TEST_P(ThumbnailDrawingTest, VeilsAClipThatIsNotMarked) {
  show(makeStrip({{.poster = flatPoster(kRed)}, {.poster = nullptr}}));  // from 90 to 210
  const QImage image = drawn();
  for (const int row : {9, 30, 48}) {
    for (const int column : {90, 120, 149}) {
      EXPECT_TRUE(isNear(pixel(image, column, row), over(kRed, kVeilGrey, 0.6)));
    }
    EXPECT_TRUE(isNear(pixel(image, 150, row), over(kBlack, kVeilGrey, 0.6))) << "without a poster, the veil only";
    EXPECT_EQ(pixel(image, 89, row), kBlack);
    EXPECT_EQ(pixel(image, 210, row), kBlack);
  }
  EXPECT_EQ(pixel(image, 120, 8), kBlack);
  EXPECT_EQ(pixel(image, 120, 49), kBlack);
}

TEST_P(ThumbnailDrawingTest, EachClipIsDrawnOverTheOneBefore) {
  show(makeStrip({{.marked = true, .poster = flatPoster(kRed)}, {.poster = flatPoster(kBlue)}}));
  const QImage image = drawn();
  EXPECT_TRUE(isNear(pixel(image, 149, 30), over(kRed, kMarkedLine, 0.8)));
  EXPECT_TRUE(isNear(pixel(image, 150, 30), over(kBlue, kVeilGrey, 0.6)));
}

TEST_P(ThumbnailDrawingTest, FramesTheActiveClipOverEverything) {
  show(makeStrip({{.marked = true, .poster = flatPoster(kRed)}, {.poster = flatPoster(kBlue)}}));
  view_.setActiveClip(clip(0));  // from 90 to 150
  const QImage image = drawn();
  for (const int column : {89, 90, 149, 150}) EXPECT_EQ(pixel(image, column, 30), kActiveLine);
  for (const int row : {8, 9, 48, 49}) EXPECT_EQ(pixel(image, 100, row), kActiveLine);
  EXPECT_EQ(pixel(image, 91, 30), kRed);
  EXPECT_EQ(pixel(image, 88, 30), kBlack);
  EXPECT_TRUE(isNear(pixel(image, 151, 30), over(kBlue, kVeilGrey, 0.6)));
}

TEST_P(ThumbnailDrawingTest, FramesAtPartsOfAPointAreStillSharp) {
  view_.resize(301, kHeight);
  show(makeStrip({{.marked = true, .poster = flatPoster(kRed)}}));
  ASSERT_EQ(position(), 120.5F);
  const QImage image = drawn();
  const double scale = GetParam();
  int lit = 0;
  for (int x = static_cast<int>(115 * scale); x < 130 * scale; ++x) {
    const QColor color = image.pixelColor(x, static_cast<int>(25 * scale));
    if (color.blue() > 60) ++lit;
    EXPECT_TRUE(color.blue() < 10 || color.blue() > 140) << x << ": no half tones";
  }
  EXPECT_EQ(lit, 2 * GetParam());
}

TEST_P(ThumbnailDrawingTest, PostersAndVeilsAtPartsOfAPointAreSharpToo) {
  view_.resize(301, kHeight);
  show(makeStrip({{.poster = flatPoster(kRed)}}));
  ASSERT_EQ(clip(0)->posterImagePos().x, 120.5F) << "what is stored is exact";
  const QImage image = drawn();
  const QColor veiled = over(kRed, kVeilGrey, 0.6);
  int lit = 0;
  for (int x = 100 * GetParam(); x < 200 * GetParam(); ++x) {
    const QColor color = image.pixelColor(x, 25 * GetParam());
    EXPECT_TRUE(isNear(color, veiled) || isNear(color, kBlack)) << x;
    if (isNear(color, veiled)) ++lit;
  }
  EXPECT_EQ(lit, 60 * GetParam());
}

TEST_P(ThumbnailDrawingTest, AnActiveClipThatWasNeverLaidOutHasNoFrame) {
  const SequenceValue other = stripOf(1, "other");
  show(stripOf(2));
  const QImage before = drawn();
  view_.setActiveClip(other->allClips().front());
  EXPECT_EQ(drawn(), before);
}

// Intended: the place that the clip had is framed, whatever became of the clip.
TEST_P(ThumbnailDrawingTest, AnActiveClipOfAnotherSequenceIsFramedWhereItWas) {
  show(stripOf(5));
  view_.setActiveClip(clip(0));
  show(makeStrip({{}}, "2"));
  EXPECT_EQ(pixel(drawn(), 30, 9), kActiveLine);
}

TEST_P(ThumbnailDrawingTest, StopsAtTheFirstClipInTheTrash) {
  show(makeStrip({{.poster = flatPoster(kRed)},
                  {.poster = flatPoster(kBlue)},
                  {.trashed = true, .poster = flatPoster(kRed)},
                  {.marked = true, .poster = flatPoster(kRed)}}));  // four posters from 30 on
  const QImage image = drawn();
  EXPECT_TRUE(isNear(pixel(image, 60, 30), over(kRed, kVeilGrey, 0.6)));
  EXPECT_TRUE(isNear(pixel(image, 120, 30), over(kBlue, kVeilGrey, 0.6)));
  for (const int column : {150, 180, 210, 240}) EXPECT_EQ(pixel(image, column, 30), kBlack);
  EXPECT_EQ(clip(1)->posterImagePos(), (platform::Rect{90, 9, 60, 40}));
  EXPECT_EQ(clip(2)->posterImagePos(), platform::Rect{});
  EXPECT_EQ(clip(3)->progressBar(), platform::Rect{});
}

TEST_P(ThumbnailDrawingTest, StoresWhereEveryClipIsWhetherOrNotItIsSeen) {
  show(stripOf(10));
  for (std::size_t i = 0; i < 10; ++i) {
    const float x = 60 * static_cast<float>(i);
    EXPECT_EQ(clip(i)->posterImagePos(), (platform::Rect{x, 9, 60, 40}));
    EXPECT_EQ(clip(i)->progressBar(), (platform::Rect{x + 2, 0, 56, 6}));
    clip(i)->setPosterImagePos({});
    clip(i)->setProgressBar({});
  }
  drawnOnly(QRect(0, 0, 10, 10));
  for (std::size_t i = 0; i < 10; ++i) {
    EXPECT_EQ(clip(i)->posterImagePos().width, 60);
    EXPECT_EQ(clip(i)->progressBar().width, 56);
  }
}

TEST_P(ThumbnailDrawingTest, DecodesOnlyThePostersInTheAreaToDraw) {
  LineLog log;
  view_.setLog(&log);
  std::vector<StripClip> plans;
  for (int i = 0; i < 10; ++i) plans.push_back({.poster = brokenPoster()});
  sequence_ = makeStrip(plans);
  view_.setActiveSequence(sequence_);
  drawnOnly(QRect(70, 10, 20, 20));
  ASSERT_EQ(log.lines.size(), 1U);
  EXPECT_NE(log.lines[0].find("\"Clip 1\""), std::string::npos) << log.lines[0];
  drawnOnly(QRect(0, 45, 300, 5));
  EXPECT_EQ(log.lines.size(), 1U) << "the bars only";
  drawn();
  EXPECT_EQ(log.lines.size(), 5U) << "what the view shows";
  drawn();
  EXPECT_EQ(log.lines.size(), 5U) << "once each";
}

TEST_P(ThumbnailDrawingTest, APartialRedrawLeavesTheRestAlone) {
  show(makeStrip({{.marked = true, .poster = flatPoster(kRed)}, {.marked = true, .poster = flatPoster(kBlue)}}));
  const QImage image = drawnOnly(QRect(100, 10, 20, 20));
  EXPECT_EQ(pixel(image, 110, 30), kRed);
  EXPECT_EQ(pixel(image, 95, 30), QColor(Qt::magenta));
  EXPECT_EQ(pixel(image, 110, 15), QColor(Qt::magenta));
}

TEST_P(ThumbnailDrawingTest, TheRightBandIsDrawnWhileTheStripRollsToTheLeft) {
  show(makeStrip(std::vector<StripClip>(10, StripClip{.marked = true, .poster = flatPoster(QColor(Qt::white))})));
  view_.mouseEntered({295, 30});
  runTicks(50);
  const QImage image = drawn();
  const double alpha = view_.state().transparency;
  ASSERT_NEAR(alpha, 0.5, 0.001);
  const QColor white(Qt::white);
  // At -250 a poster begins at 290; its line would be in the way at the left edge of the band.
  EXPECT_EQ(pixel(image, 288, 42), white);
  EXPECT_TRUE(isNear(pixel(image, 295, 44), over(white, kBandGrey, alpha)));
  EXPECT_TRUE(isNear(pixel(image, 295, 12), over(white, kBandGrey, alpha)));
  EXPECT_TRUE(isNear(pixel(image, 292, 30), over(over(white, kBandGrey, alpha), kBandGrey, alpha))) << "the arrow";
  EXPECT_TRUE(isNear(pixel(image, 298, 30), over(over(white, kBandGrey, alpha), kBandGrey, alpha))) << "its point";
  EXPECT_TRUE(isNear(pixel(image, 298, 22), over(white, kBandGrey, alpha))) << "above the arrow's slope";
  EXPECT_EQ(pixel(image, 5, 30), white) << "no band at the left";
}

TEST_P(ThumbnailDrawingTest, TheLeftBandIsDrawnWhileTheStripRollsToTheRight) {
  show(makeStrip(std::vector<StripClip>(10, StripClip{.poster = nullptr})));
  view_.mouseEntered({5, 30});
  runTicks(200);
  const QImage image = drawn();
  const double alpha = view_.state().transparency;
  const QColor below = over(kBlack, kVeilGrey, 0.6);
  EXPECT_TRUE(isNear(pixel(image, 5, 44), over(below, kBandGrey, alpha)));
  EXPECT_TRUE(isNear(pixel(image, 9, 11), over(below, kBandGrey, alpha)));
  EXPECT_TRUE(isNear(pixel(image, 10, 30), below)) << "ten points only";
  EXPECT_TRUE(isNear(pixel(image, 7, 30), over(over(below, kBandGrey, alpha), kBandGrey, alpha)));
  EXPECT_TRUE(isNear(pixel(image, 1, 24), over(below, kBandGrey, alpha)));
  EXPECT_TRUE(isNear(pixel(image, 295, 30), below)) << "no band at the right";
  view_.mouseExited();
  EXPECT_TRUE(isNear(pixel(drawn(), 5, 30), below));
}

TEST_P(ThumbnailDrawingTest, PostersAreAsSharpAsTheScreen) {
  QImage stripes(120, 80, QImage::Format_RGB32);
  for (int x = 0; x < stripes.width(); ++x) {
    for (int y = 0; y < stripes.height(); ++y) stripes.setPixelColor(x, y, x % 2 == 0 ? Qt::white : Qt::black);
  }
  show(makeStrip({{.marked = true, .poster = pngOf(stripes)}}));
  const QImage image = drawn();
  const int at = 150 * GetParam();
  const int difference =
      std::abs(image.pixelColor(at, 20 * GetParam()).red() - image.pixelColor(at + 1, 20 * GetParam()).red());
  if (GetParam() == 2) {
    EXPECT_EQ(difference, 255);
  } else {
    EXPECT_LT(difference, 30) << "two columns a pixel";
  }
}

}  // namespace
}  // namespace zq::test
