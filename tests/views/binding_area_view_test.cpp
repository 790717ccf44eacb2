// The bands between a timeline and a strip.

#include "views/binding_area_view.h"

#include <gmock/gmock.h>

#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <array>
#include <memory>
#include <random>

#include "views/paint_watcher.h"
#include "views/timeline_fixture.h"

namespace zq::test {
namespace {

using platform::Rect;
using testing::ElementsAre;
using testing::IsEmpty;

/// An area of 200 x 40 points on white.
class BindingAreaTest : public QtTest {
 protected:
  BindingAreaTest() { view_.resize(200, 40); }

  void show(const std::vector<TimelineClip>& plans) {
    sequence_ = makeTimelineSequence("1", plans);
    view_.setActiveSequence(sequence_);
  }
  ClipValue clip(std::size_t index) const { return sequence_->allClips().at(index); }
  void place(std::size_t index, float timelineX, float timelineWidth, float posterX) {
    clip(index)->setPosInTimeline({timelineX, 3, timelineWidth, 40});
    clip(index)->setPosterImagePos({posterX, 9, 60, 40});
  }

  QImage draw(qreal scale = 1) {
    QImage image((QSizeF(view_.size()) * scale).toSize(), QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(scale);
    image.fill(Qt::white);
    view_.render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
    return image;
  }
  bool isBlank() {
    const QImage image = draw();
    QImage white = image;
    white.fill(Qt::white);
    return image == white;
  }
  std::vector<QRect> drawnAnew(PaintWatcher& watcher) {
    runPosted(runtime_);
    return watcher.takeAreas();
  }

  const QRect whole_{0, 0, 200, 40};
  backend::VirtualRuntime runtime_;
  ZQACBindingAreaView view_{runtime_};
  SequenceValue sequence_;
};

/// White under the grey: 255 x 0.5 + 102 x 0.5.
bool isGrey(const QColor& color) {
  return std::abs(color.red() - 179) <= 1 && color.red() == color.green() && color.green() == color.blue();
}

/// How much the blue of the outline differs from its red: nothing where it is of no colour.
int blueOfOutline(const QImage& image, int row) {
  int most = 0;
  for (int x = 0; x < image.width(); ++x) {
    const QColor color = image.pixelColor(x, row);
    const int difference = color.blue() - color.red();
    if (std::abs(difference) > std::abs(most)) most = difference;
  }
  return most;
}

/// The darkest of a row.
int darkest(const QImage& image, int row) {
  int least = 255;
  for (int x = 0; x < image.width(); ++x) least = std::min(least, image.pixelColor(x, row).red());
  return least;
}

TEST_F(BindingAreaTest, BeginsWithNothing) {
  EXPECT_EQ(view_.activeSequence(), nullptr);
  EXPECT_EQ(view_.activeClip(), nullptr);
  EXPECT_TRUE(isBlank());
}

TEST_F(BindingAreaTest, AnotherSequenceIsDrawnWhenTheMainThreadIsFree) {
  show({{}});
  runPosted(runtime_);
  PaintWatcher watcher(view_);

  view_.setActiveSequence(sequence_);
  EXPECT_THAT(drawnAnew(watcher), IsEmpty()) << "it is the same";

  view_.setActiveSequence(makeTimelineSequence("1", {{}}));
  EXPECT_THAT(watcher.takeAreas(), IsEmpty());
  EXPECT_THAT(drawnAnew(watcher), ElementsAre(whole_));

  view_.setActiveSequence(nullptr);
  EXPECT_THAT(drawnAnew(watcher), ElementsAre(whole_));
  EXPECT_EQ(view_.activeSequence(), nullptr);
}

TEST_F(BindingAreaTest, AClipIsTakenWithoutDrawing) {
  show({{}, {}});
  runPosted(runtime_);
  PaintWatcher watcher(view_);

  view_.setActiveClip(clip(1));

  EXPECT_EQ(view_.activeClip(), clip(1));
  EXPECT_THAT(drawnAnew(watcher), IsEmpty());
}

TEST_F(BindingAreaTest, RefreshDrawsAtOnceOnTheMainThreadAndElsewhereHandsItThere) {
  PaintWatcher watcher(view_);

  view_.refresh();
  EXPECT_THAT(watcher.takeAreas(), ElementsAre(whole_));

  runtime_.startThread("other", [&] { view_.refresh(); })->join();
  EXPECT_THAT(watcher.takeAreas(), IsEmpty());
  EXPECT_THAT(drawnAnew(watcher), ElementsAre(whole_));
}

TEST_F(BindingAreaTest, EverythingIsReleasedWithTheView) {
  auto view = std::make_unique<ZQACBindingAreaView>(runtime_);
  auto sequence = makeTimelineSequence("1", {{}});
  const std::weak_ptr<ZQACSequence> heldSequence = sequence;
  const std::weak_ptr<ZQACClip> heldClip = sequence->allClips()[0];
  view->setActiveClip(heldClip.lock());
  view->setActiveSequence(std::move(sequence));

  view.reset();
  runPosted(runtime_);

  EXPECT_TRUE(heldSequence.expired());
  EXPECT_TRUE(heldClip.expired());
}

class BindingAreaScaleTest : public BindingAreaTest, public testing::WithParamInterface<int> {};

TEST_P(BindingAreaScaleTest, ABandJoinsTheTimelineAboveToThePictureBelow) {
  show({{}});
  place(0, 18, 64, 98);  // 20 to 80 at the top, 100 to 156 at the bottom
  const QImage image = draw(GetParam());

  EXPECT_EQ(colorAt(image, 20, 1.5), QColor(Qt::white));  // 23 to 82.9 here
  EXPECT_TRUE(isGrey(colorAt(image, 26, 1.5)));
  EXPECT_TRUE(isGrey(colorAt(image, 80, 1.5)));
  EXPECT_EQ(colorAt(image, 86, 1.5), QColor(Qt::white));
  EXPECT_EQ(colorAt(image, 94, 38.5), QColor(Qt::white));  // 97 to 153.2 here
  EXPECT_TRUE(isGrey(colorAt(image, 100, 38.5)));
  EXPECT_TRUE(isGrey(colorAt(image, 150, 38.5)));
  EXPECT_EQ(colorAt(image, 156, 38.5), QColor(Qt::white));
  EXPECT_EQ(colorAt(image, 58, 20.2), QColor(Qt::white)) << "half way down it begins at 60";
  EXPECT_TRUE(isGrey(colorAt(image, 63, 20.2)));
}

INSTANTIATE_TEST_SUITE_P(Scale, BindingAreaScaleTest, testing::Values(1, 2));

TEST_F(BindingAreaTest, TheFirstOutlineIsBlackTheNextOnesAreGrey) {
  show({{}, {}});
  place(0, 18, 44, 18);
  place(1, 98, 44, 98);
  const QImage image = draw(2);

  EXPECT_LT(darkest(image.copy(0, 0, 160, 80), 40), 150);
  EXPECT_GT(darkest(image.copy(160, 0, 240, 80), 40), 150);
  EXPECT_LT(darkest(image.copy(160, 0, 240, 80), 40), 176) << "there is one";
}

TEST_F(BindingAreaTest, AFirstBandOutOfSightTakesTheBlackWithIt) {
  show({{}, {}});
  place(0, -500, 44, -500);
  place(1, 98, 44, 98);

  EXPECT_GT(darkest(draw(2), 40), 150);
}

TEST_F(BindingAreaTest, AFirstClipThatWasNeverLaidOutTakesTheBlackWithIt) {
  show({{}, {}});
  place(1, 98, 44, 98);

  EXPECT_GT(darkest(draw(2), 40), 150);
}

TEST_F(BindingAreaTest, MarkedAndActiveClipsHaveColouredEdgesUnderTheGrey) {
  const auto outlineOf = [this](std::size_t index) {
    show({{}, {.marked = true}, {}});
    place(index, 98, 44, 98);
    return blueOfOutline(draw(2), 40);
  };
  EXPECT_EQ(outlineOf(0), 0);
  EXPECT_GT(outlineOf(1), 10) << "blue";
  EXPECT_EQ(outlineOf(2), 0) << "the colour does not go on after the fill";
}

TEST_F(BindingAreaTest, ActiveWinsOverMarked) {
  show({{.marked = true}});
  place(0, 98, 44, 98);
  ASSERT_GT(blueOfOutline(draw(2), 40), 10);

  view_.setActiveClip(clip(0));

  EXPECT_LT(blueOfOutline(draw(2), 40), -10) << "yellow";
}

TEST_F(BindingAreaTest, TheActiveClipIsTheSameObject) {
  show({{}});
  place(0, 98, 44, 98);
  view_.setActiveClip(makeTimelineSequence("1", {{}})->allClips()[0]);

  EXPECT_EQ(blueOfOutline(draw(2), 40), 0);
}

TEST_F(BindingAreaTest, TheFillLiesOverTheOutline) {
  show({{}});
  place(0, 98, 60, 98);  // its left edge at 100, the outline from 99.75 to 100.25
  const QImage image = draw(4);

  EXPECT_EQ(image.pixelColor(399, 80), QColor(Qt::black));
  EXPECT_NEAR(image.pixelColor(400, 80).red(), 51, 1) << "the inner half is under the grey";
}

TEST_F(BindingAreaTest, ClipsThatWereNeverLaidOutDrawNothing) {
  show({{}, {.marked = true}, {}});
  view_.setActiveClip(clip(2));

  EXPECT_TRUE(isBlank());
}

TEST_F(BindingAreaTest, ClipsInTheTrashAreDrawnWithTheRectanglesThatTheyHave) {
  ClipRecord record;
  record.isInTrash = true;
  record.clipId = "trash";
  const auto trashed = std::make_shared<ZQACClip>(record);
  trashed->setPosInTimeline({98, 3, 44, 40});
  trashed->setPosterImagePos({98, 9, 60, 40});
  const auto after = std::make_shared<ZQACClip>(ClipRecord{});
  after->setPosInTimeline({18, 3, 44, 40});
  after->setPosterImagePos({18, 9, 60, 40});
  view_.setActiveSequence(
      std::make_shared<ZQACSequence>("1", "S", std::vector<ClipValue>{trashed, after}, dateAfter(0)));
  const QImage image = draw();

  EXPECT_TRUE(isGrey(colorAt(image, 120, 20)));
  EXPECT_TRUE(isGrey(colorAt(image, 40, 20)));
}

TEST_F(BindingAreaTest, AClipWithoutAPictureYetIsJoinedToTheLeftCorner) {
  show({{}});
  clip(0)->setPosInTimeline({98, 3, 44, 40});
  const QImage image = draw();

  EXPECT_FALSE(colorAt(image, 60, 19.5) == QColor(Qt::white));
}

TEST_F(BindingAreaTest, AClipNarrowerThanItsMarginsIsStillJoinedToItsPicture) {
  show({{}});
  place(0, 100, 1, 98);  // from 102 to 99 at the top
  const QImage image = draw();

  EXPECT_TRUE(isGrey(colorAt(image, 130, 38.5)));
  EXPECT_TRUE(isGrey(colorAt(image, 112, 20)));
}

TEST_F(BindingAreaTest, ScrollingTheStripMovesTheLowerEdgesOnly) {
  show({{}});
  place(0, 18, 44, 18);
  const QImage before = draw();
  place(0, 18, 44, 98);
  const QImage after = draw();

  EXPECT_TRUE(isGrey(colorAt(before, 30, 38)));
  EXPECT_EQ(colorAt(after, 30, 38), QColor(Qt::white));
  EXPECT_TRUE(isGrey(colorAt(after, 130, 38)));
  EXPECT_TRUE(isGrey(colorAt(after, 40, 2)));
}

TEST_F(BindingAreaTest, WithoutASequenceNothingIsDrawn) {
  show({{}});
  place(0, 18, 44, 18);
  ASSERT_FALSE(isBlank());

  view_.setActiveSequence(nullptr);

  EXPECT_TRUE(isBlank());
}

TEST_F(BindingAreaTest, NothingIsDrawnOutsideTheView) {
  show({{.marked = true}, {}});
  place(0, -20, 70, -40);
  place(1, 180, 60, 170);
  QImage image(300, 100, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::white);
  view_.render(&image, QPoint(50, 30), QRegion(), QWidget::DrawChildren);

  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) {
      if (QRect(50, 30, 200, 40).contains(x, y)) continue;
      ASSERT_EQ(image.pixelColor(x, y), QColor(Qt::white)) << x << ", " << y;
    }
  }
}

/// The rules once more, in the plainest way: every clip, seen or not, with the painter's own state for the colour.
QImage naiveBands(const ZQACSequence& sequence, const ZQACClip* active, QSize size) {
  QImage image(size, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::white);
  QPainter painter(&image);
  painter.setRenderHint(QPainter::Antialiasing);
  QColor current = Qt::black;
  for (const ClipValue& clip : sequence.allClips()) {
    const Rect t = clip->posInTimeline();
    const Rect p = clip->posterImagePos();
    QPainterPath path;
    path.moveTo(t.x + 2, 0);
    path.lineTo(t.x + 2 + (t.width - 4), 0);
    path.lineTo(p.x + 2 + (p.width - 4), size.height());
    path.lineTo(p.x + 2, size.height());
    path.closeSubpath();
    if (clip->isRecapture()) current = QColor::fromRgbF(0.439F, 0.576F, 0.737F, 0.8F);
    if (clip.get() == active) current = QColor::fromRgbF(1.0F, 0.922F, 0.549F, 0.8F);
    painter.strokePath(path, QPen(current, 0.5));
    current = QColor::fromRgbF(0.4F, 0.4F, 0.4F, 0.5F);
    painter.fillPath(path, current);
  }
  return image;
}

int distance(const QImage& one, const QImage& other) {
  int most = 0;
  for (int y = 0; y < one.height(); ++y) {
    for (int x = 0; x < one.width(); ++x) {
      const QColor a = one.pixelColor(x, y);
      const QColor b = other.pixelColor(x, y);
      most =
          std::max({most, std::abs(a.red() - b.red()), std::abs(a.green() - b.green()), std::abs(a.blue() - b.blue())});
    }
  }
  return most;
}

class RandomBindingAreaTest : public BindingAreaTest, public testing::WithParamInterface<int> {};

TEST_P(RandomBindingAreaTest, IsDrawnAsByTheRules) {
  std::mt19937 random(static_cast<unsigned>(GetParam()));
  const auto pick = [&](int low, int high) { return std::uniform_int_distribution(low, high)(random); };
  std::vector<TimelineClip> plans(static_cast<std::size_t>(pick(1, 20)));
  for (TimelineClip& plan : plans) plan.marked = pick(0, 2) == 0;
  show(plans);
  const auto scroll = static_cast<float>(pick(-900, 60));
  float x = 12;
  for (std::size_t i = 0; i < plans.size(); ++i) {
    const float width = static_cast<float>(pick(0, 400)) / 10;
    place(i, x, width, scroll + 60 * static_cast<float>(i));
    x += width;
  }
  view_.setActiveClip(clip(plans.size() / 2));

  // The painter rounds slanted edges otherwise where they were cut. Where an outline is missing, it is some 60.
  EXPECT_LE(distance(draw(), naiveBands(*sequence_, view_.activeClip().get(), view_.size())), 8);
}

TEST_F(BindingAreaTest, ALongStripIsDrawnWhereItIsSeen) {
  show(std::vector<TimelineClip>(3));
  place(0, 20, 30, 600000);  // to the right of the view, far beyond what a painter can reach
  place(1, 60, 30, -600000);
  place(2, 160, 30, -3e9F);
  const QImage image = draw();

  EXPECT_LT(darkest(image, 0), 255) << "at the top, where they leave the timeline";
  for (int x = 0; x < 200; ++x) EXPECT_EQ(image.pixelColor(x, 20), QColor(Qt::white)) << x;
}

INSTANTIATE_TEST_SUITE_P(Seed, RandomBindingAreaTest, testing::Range(0, 25));

}  // namespace
}  // namespace zq::test
