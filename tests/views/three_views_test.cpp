// Timeline, band and strip together, as the window puts them.

#include <gtest/gtest.h>

#include <vector>

#include "views/binding_area_view.h"
#include "views/strip_fixture.h"

namespace zq::test {
namespace {

/// The timeline above, 300 points wide as the strip, and the band of 300 x 40 between them.
class ThreeViewsTest : public StripTest {
 protected:
  ThreeViewsTest() {
    timeline_.resize(300, 46);
    band_.resize(300, 40);
    timeline_.setThumbnailView(&view_);
    view_.setBindingAreaView(&band_);
  }
  ~ThreeViewsTest() override {
    timeline_.setThumbnailView(nullptr);
    view_.setBindingAreaView(nullptr);
  }

  void showTape(const SequenceValue& sequence) {
    sequence_ = sequence;
    timeline_.refreshWithTape(std::make_shared<ZQACTape>(1, "Holiday", std::vector<SequenceValue>{sequence}));
    timeline_.setCurrentSequence(sequence);
    drawAll();
  }
  /// As the screen does, from the top; twice, as the strip tells the band when its clips have moved.
  void drawAll() {
    for (int i = 0; i < 2; ++i) {
      runPosted(runtime_);
      pictureOf(timeline_);
      image_ = drawnBand();
      draw();
    }
  }
  QImage drawnBand() {
    QImage image(band_.size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::white);
    band_.render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
    return image;
  }
  /// Which columns of the band's picture are not ground.
  std::vector<int> columnsIn(int row) const {
    std::vector<int> columns;
    for (int x = 0; x < image_.width(); ++x) {
      if (image_.pixelColor(x, row) != QColor(Qt::white)) columns.push_back(x);
    }
    return columns;
  }

  ZQACTimelineView timeline_{runtime_};
  ZQACBindingAreaView band_{runtime_};
  QImage image_;
};

TEST_F(ThreeViewsTest, ScrollingTheStripMovesTheLowerEdgesOfTheBandsOnly) {
  showTape(stripOf(10));
  const std::vector<int> top = columnsIn(0);
  const std::vector<int> bottom = columnsIn(39);
  const platform::Rect place = clip(6)->posInTimeline();

  view_.setActiveClip(clip(6));
  view_.findFirstPosterImagePosWithActivePosterImagePos(17);
  drawAll();

  EXPECT_EQ(clip(6)->posterImagePos().x, 150 + 17 - 30);
  EXPECT_EQ(clip(6)->posInTimeline(), place);
  EXPECT_NE(columnsIn(39), bottom);
  // Within the uppermost row a slanted edge goes on by some points; the strip was moved by 243.
  EXPECT_NEAR(columnsIn(0).front(), top.front(), 10);
  EXPECT_NEAR(columnsIn(0).back(), top.back(), 10);
}

TEST_F(ThreeViewsTest, ClipsInTheTrashHaveBandsFromTheTimelineToTheCornerWhereTheyHaveNoPoster) {
  showTape(makeStrip({{}, {}, {.trashed = true}}));
  ASSERT_EQ(clip(2)->posterImagePos(), platform::Rect{});
  const platform::Rect place = clip(2)->posInTimeline();
  ASSERT_GT(place.width, 50);

  const QColor below = image_.pixelColor(static_cast<int>(place.x + place.width / 2), 0);
  EXPECT_NE(below, QColor(Qt::white));
}

TEST_F(ThreeViewsTest, AClickInTheTimelineBringsThePictureUnderItsBand) {
  showTape(stripOf(10));
  ASSERT_TRUE(timeline_.findClipAndSequenceForPoint({clip(6)->posInTimeline().x + 5, 20}));
  timeline_.myMethodeWhenClipClicked();
  runTicks(1001);
  drawAll();
  EXPECT_EQ(view_.activeClip(), clip(6));
  EXPECT_EQ(band_.activeClip(), clip(6));
  EXPECT_EQ(clip(6)->posterImagePos().x, 120);
}

}  // namespace
}  // namespace zq::test
