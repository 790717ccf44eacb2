// Where sequences and clips are laid out, and which pixels that gives.

#include <gmock/gmock.h>

#include <QPainter>
#include <algorithm>
#include <array>
#include <cmath>
#include <random>

#include "views/timeline_fixture.h"
#include "views/view_coordinates.h"

namespace zq::test {
namespace {

using platform::Rect;

const QColor kFrame(255, 0, 0);
const QColor kSequence(59, 59, 59);
const QColor kMarked(78, 97, 119);
const QColor kActive(255, 235, 140);
const QColor kSeparator(25, 25, 25);

/// `y` counted from the lower edge.
QColor colorAbove(const QImage& image, qreal x, qreal y) {
  return colorAt(image, x, image.height() / image.devicePixelRatio() - y);
}

/// Draws a part anew on what the image shows.
void drawPart(QWidget& widget, QImage& image, const QRect& part) {
  QPainter painter(&image);
  widget.render(&painter, part.topLeft(), part, QWidget::DrawChildren);
}

class TimelineDrawingTest : public TimelineTest, public testing::WithParamInterface<int> {
 protected:
  qreal scale() const { return GetParam(); }
};

TEST_F(TimelineTest, WithoutATapeNothingIsDrawn) {
  QImage ground(view_.size(), QImage::Format_ARGB32_Premultiplied);
  ground.fill(Qt::green);
  view_.setAttribute(Qt::WA_NoSystemBackground);
  QImage image = ground;
  view_.render(&image, QPoint(), QRegion(), QWidget::DrawChildren);

  EXPECT_EQ(image, ground);
}

TEST_F(TimelineTest, AClipThatFillsItsTapeEndsBeyondItsSequence) {
  show(makeTimelineTape({{{.frames = 100}}}));

  EXPECT_EQ(tape_->sequenceAtIndex(0)->posInTimeline(), (Rect{9, 3, 200, 40}));
  EXPECT_EQ(clipAt(tape_, 0, 0)->posInTimeline(), (Rect{12, 3, 200, 40}));
}

TEST_F(TimelineTest, RecordsBeginAtWholePointsAndKeepFractionalWidths) {
  show(makeTimelineTape({{{.frames = 1}, {.frames = 1}}, {{.frames = 1}}}));  // 200 points for 3 frames
  constexpr float kFrame1 = 200.0F / 3;

  EXPECT_EQ(tape_->sequenceAtIndex(0)->posInTimeline(), (Rect{9, 3, 2 * kFrame1, 40}));
  EXPECT_EQ(clipAt(tape_, 0, 0)->posInTimeline(), (Rect{12, 3, kFrame1, 40}));
  EXPECT_EQ(clipAt(tape_, 0, 1)->posInTimeline(), (Rect{78, 3, kFrame1, 40}));  // 78.67 is where the first one ends
  EXPECT_EQ(tape_->sequenceAtIndex(1)->posInTimeline(), (Rect{142, 3, kFrame1, 40}));
  EXPECT_EQ(clipAt(tape_, 1, 0)->posInTimeline(), (Rect{145, 3, kFrame1, 40}));
}

TEST_P(TimelineDrawingTest, EachThingHasItsColour) {
  show(makeTimelineTape(
      {{{.frames = 50}, {.frames = 50, .marked = true}, {.frames = 50, .marked = true}}, {{.frames = 50}}}));
  // A point a frame: the clips begin at 12, 62 and 112.
  view_.setCurrentClip(clipAt(tape_, 0, 2));
  const QImage image = draw(scale());

  EXPECT_EQ(colorAbove(image, 1, 23), kFrame);
  EXPECT_EQ(colorAbove(image, 216, 23), kFrame);
  EXPECT_EQ(colorAbove(image, 100, 1.5), kFrame) << "below the track";
  EXPECT_EQ(colorAbove(image, 100, 44.5), kFrame) << "above the track";
  EXPECT_EQ(colorAbove(image, 10, 23), kFrame) << "in the sequence's margin";
  EXPECT_EQ(colorAbove(image, 40, 23), kSequence);
  EXPECT_EQ(colorAbove(image, 40, 3.6), kSequence) << "the track begins 3 points above the edge";
  EXPECT_EQ(colorAbove(image, 40, 42.6), kSequence) << "and ends 3 points below it";
  EXPECT_EQ(colorAbove(image, 61.3, 23), kSeparator);
  EXPECT_EQ(colorAbove(image, 62.3, 23), kMarked) << "covers the right half of the separator before it";
  EXPECT_EQ(colorAbove(image, 100, 23), kMarked);
  EXPECT_EQ(colorAbove(image, 140, 23), kActive) << "wins over the mark";
}

TEST_P(TimelineDrawingTest, ASeparatorIsTwoPointsWideOnTheClipsRightEdge) {
  show(makeTimelineTape({{{.frames = 50}, {.frames = 50}}}));  // the first clip ends at 112
  const QImage image = draw(scale());

  EXPECT_EQ(colorAbove(image, 110.6, 23), kSequence);
  EXPECT_EQ(colorAbove(image, 111.1, 23), kSeparator);
  EXPECT_EQ(colorAbove(image, 112.9, 23), kSeparator);
  EXPECT_EQ(colorAbove(image, 113.1, 23), kSequence);
  EXPECT_EQ(colorAbove(image, 111.5, 3.1), kSeparator);
  EXPECT_EQ(colorAbove(image, 111.5, 2.9), kFrame);
  EXPECT_EQ(colorAbove(image, 111.5, 42.9), kSeparator);
  EXPECT_EQ(colorAbove(image, 111.5, 43.1), kFrame);
}

TEST_P(TimelineDrawingTest, TheLastClipIsDrawnOverTheFrame) {
  show(makeTimelineTape({{{.frames = 100, .marked = true}}}));  // the sequence ends at 209, the clip at 212
  const QImage image = draw(scale());

  EXPECT_EQ(colorAbove(image, 207, 23), kMarked);
  EXPECT_EQ(colorAbove(image, 210.6, 23), kMarked);
  EXPECT_EQ(colorAbove(image, 211.6, 23), kSeparator);
  EXPECT_EQ(colorAbove(image, 213.6, 23), kFrame);
}

TEST_P(TimelineDrawingTest, ASequencesGroundLeavesTheOverhangOfTheOneBefore) {
  show(makeTimelineTape({{{.frames = 50, .marked = true}}, {{.frames = 50}}}));
  // The first sequence ends at 109, its clip at 112 with a separator up to 113; the second one's ground begins there.
  const QImage image = draw(scale());

  EXPECT_EQ(colorAbove(image, 110.6, 23), kMarked);
  EXPECT_EQ(colorAbove(image, 111.1, 23), kSeparator);
  EXPECT_EQ(colorAbove(image, 112.1, 23), kSequence);
}

INSTANTIATE_TEST_SUITE_P(Scale, TimelineDrawingTest, testing::Values(1, 2));

TEST_F(TimelineTest, FractionalEdgesAreBlended) {
  show(makeTimelineTape({{{.frames = 3, .marked = true}}, {{.frames = 397}}}));  // 1.5 points of clip, from 12 on
  const QImage image = draw();

  // Half of the pixel at 12 is below the separator, which reaches from 12.5 to 14.5.
  const QColor blended = colorAbove(image, 12, 23);
  EXPECT_NEAR(blended.blue(), (kMarked.blue() + kSeparator.blue()) / 2, 2);
}

TEST_F(TimelineTest, ASequenceNarrowerThanItsMarginsHasNoGround) {
  show(makeTimelineTape({{{.frames = 5}}, {{.frames = 195}}}));  // 5 points, from 9 on
  const QImage image = draw();

  EXPECT_EQ(tape_->sequenceAtIndex(0)->posInTimeline(), (Rect{9, 3, 5, 40}));
  EXPECT_EQ(clipAt(tape_, 0, 0)->posInTimeline(), (Rect{12, 3, 5, 40}));
  EXPECT_EQ(colorAbove(image, 12, 23), kFrame);
  EXPECT_EQ(colorAbove(image, 16, 23), kSeparator);
}

TEST_F(TimelineTest, SequencesAreLaidOutInEachDrawingClipsWhereTheirSequenceIsDrawn) {
  show(makeTimelineTape({{{.frames = 50}}, {{.frames = 50}}}));
  const Rect early = clipAt(tape_, 0, 0)->posInTimeline();
  view_.resize(418, 46);
  QImage image(view_.size(), QImage::Format_ARGB32_Premultiplied);

  drawPart(view_, image, {300, 0, 10, 46});  // in the second sequence

  EXPECT_EQ(tape_->sequenceAtIndex(0)->posInTimeline(), (Rect{9, 3, 200, 40}));
  EXPECT_EQ(tape_->sequenceAtIndex(1)->posInTimeline(), (Rect{209, 3, 200, 40}));
  EXPECT_EQ(clipAt(tape_, 0, 0)->posInTimeline(), early) << "is not drawn, and stays where it was";
  EXPECT_EQ(clipAt(tape_, 1, 0)->posInTimeline(), (Rect{212, 3, 200, 40}));
}

TEST_F(TimelineTest, ASequenceThatOnlyTouchesTheAreaIsNotDrawn) {
  show(makeTimelineTape({{{.frames = 50}}, {{.frames = 50}}}));  // from 9 to 109, and to 209
  clipAt(tape_, 0, 0)->setPosInTimeline({});
  QImage image(view_.size(), QImage::Format_ARGB32_Premultiplied);

  drawPart(view_, image, {109, 0, 10, 46});
  EXPECT_EQ(clipAt(tape_, 0, 0)->posInTimeline(), Rect{});

  drawPart(view_, image, {108, 0, 10, 46});
  EXPECT_EQ(clipAt(tape_, 0, 0)->posInTimeline(), (Rect{12, 3, 100, 40}));
}

TEST_F(TimelineTest, AClipThatOnlyTouchesTheAreaIsNotDrawnItsSeparatorNeither) {
  show(makeTimelineTape({{{.frames = 50}, {.frames = 50}}}));  // the first clip ends at 112, its separator at 113
  QImage image = draw();

  drawPart(view_, image, {112, 0, 10, 46});
  EXPECT_EQ(colorAbove(image, 111.5, 23), kSeparator);
  EXPECT_EQ(colorAbove(image, 112.5, 23), kSequence);

  drawPart(view_, image, {111, 0, 10, 46});
  EXPECT_EQ(colorAbove(image, 112.5, 23), kSeparator);
}

TEST_F(TimelineTest, APartDrawnAnewLooksAsBefore) {
  show(makeTimelineTape({{{.frames = 30, .marked = true}, {.frames = 45}}, {{.frames = 25, .marked = true}}}));
  view_.setCurrentClip(clipAt(tape_, 0, 1));
  const QImage whole = draw();
  QImage image = whole;

  drawPart(view_, image, {40, 0, 30, 46});

  EXPECT_EQ(image, whole);
}

TEST_F(TimelineTest, TheFramesPicturesAreDrawnWholeIntoTheirPlaces) {
  // The left half of each picture is of one colour, the right half of another, the lowest tenth is white.
  const auto halves = [](const std::string& left, const std::string& right) {
    return "<rect width='5' height='10' fill='" + left + "'/><rect x='5' width='5' height='10' fill='" + right +
           "'/><rect y='9' width='10' height='1' fill='#ffffff'/>";
  };
  skin_.add("timelineLeft", halves("#110000", "#220000"));
  skin_.add("timelineMiddle", halves("#001100", "#002200"));
  skin_.add("timelineRight", halves("#000011", "#000022"));
  skin_.install();
  show(makeTimelineTape({}));
  const QImage image = draw(2);

  EXPECT_EQ(colorAbove(image, 4, 44), QColor("#110000"));
  EXPECT_EQ(colorAbove(image, 5, 44), QColor("#220000"));
  EXPECT_EQ(colorAbove(image, 8.5, 44), QColor("#220000"));
  EXPECT_EQ(colorAbove(image, 9, 44), QColor("#001100"));
  EXPECT_EQ(colorAbove(image, 108, 44), QColor("#001100"));
  EXPECT_EQ(colorAbove(image, 110, 44), QColor("#002200"));
  EXPECT_EQ(colorAbove(image, 208.5, 44), QColor("#002200"));
  EXPECT_EQ(colorAbove(image, 209, 44), QColor("#000011"));
  EXPECT_EQ(colorAbove(image, 217.5, 44), QColor("#000022"));
  for (const qreal x : {2.0, 100.0, 215.0}) {
    EXPECT_EQ(colorAbove(image, x, 1), QColor(Qt::white)) << "the lower edge of the picture is below, at " << x;
    EXPECT_NE(colorAbove(image, x, 45), QColor(Qt::white));
  }
}

TEST_F(TimelineTest, TheShadowLiesOverAllOfTheTrack) {
  skin_.add("timelineShadow",
            "<rect width='5' height='10' fill='#0000ff'/><rect x='5' width='5' height='10' "
            "fill='#00ff00' fill-opacity='0.5'/>");
  skin_.install();
  show(makeTimelineTape({{{.frames = 100, .marked = true}}}));
  const QImage image = draw();

  EXPECT_EQ(colorAbove(image, 8.5, 23), kFrame);
  EXPECT_EQ(colorAbove(image, 9, 23), QColor("#0000ff"));
  EXPECT_EQ(colorAbove(image, 107, 23), QColor("#0000ff"));
  EXPECT_NEAR(colorAbove(image, 150, 23).green(), (kMarked.green() + 255) / 2, 2);
  EXPECT_EQ(colorAbove(image, 209.5, 23), kMarked) << "right of the track";
  EXPECT_EQ(colorAbove(image, 100, 2.5), kFrame) << "below the track";
}

TEST_F(TimelineTest, TheShadowLiesOverTheCursorToo) {
  skin_.addFlat("timelineShadow", "#0000ff");
  skin_.install();
  show(makeTimelineTape({{{.frames = 100}}}));
  view_.setCurrentSequence(tape_->sequenceAtIndex(0));
  view_.setCursorTimecode(palTimecode(50));
  view_.setCursorDate(dateAfter(1));
  const QImage image = draw();

  EXPECT_EQ(colorAbove(image, 109, 23), QColor("#0000ff"));
}

TEST_F(TimelineTest, NothingIsDrawnOutsideTheView) {
  show(makeTimelineTape({{{.frames = 100, .marked = true}}}));
  QWidget window;
  window.resize(300, 100);
  view_.setParent(&window);
  view_.move(40, 30);
  window.setPalette(QPalette(Qt::green));
  const QImage image = pictureOf(window);
  view_.setParent(nullptr);

  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) {
      if (QRect(40, 30, 218, 46).contains(x, y)) continue;
      ASSERT_EQ(image.pixelColor(x, y), image.pixelColor(0, 0));
    }
  }
}

// What a broken list may say.

TEST_F(TimelineTest, ATapeWithoutFramesShowsItsFrameOnly) {
  show(makeTimelineTape({{{.frames = 0, .marked = true}}}));

  EXPECT_EQ(tape_->totalDurationInFrame(), 0);
  EXPECT_EQ(tape_->sequenceAtIndex(0)->posInTimeline(), (Rect{9, 3, 0, 40}));
  EXPECT_EQ(colorAbove(draw(), 100, 23), kFrame);
}

TEST_F(TimelineTest, DurationsThatCancelOutShowTheFrameOnly) {
  show(makeTimelineTape({{{.frames = 24}}, {{.frames = -24}}}));

  ASSERT_EQ(tape_->totalDurationInFrame(), 0);
  EXPECT_EQ(colorAbove(draw(), 100, 23), kFrame);
}

TEST_F(TimelineTest, NegativeAndHugeDurationsDrawWithinTheView) {
  const auto clipOf = [](std::int16_t hours, const std::string& id) {
    ClipRecord record;
    SMPTETime time;
    time.mHours = hours;
    record.duration = valueWithSMPTETime(time);
    record.clipId = id;
    record.timebase = 30;
    record.recapture = true;
    return std::make_shared<ZQACClip>(record);
  };
  const auto sequenceOf = [&](const std::vector<std::int16_t>& hours) {
    std::vector<ClipValue> clips;
    for (const std::int16_t h : hours) clips.push_back(clipOf(h, "x"));
    return std::make_shared<ZQACSequence>("s", "S", clips, dateAfter(0));
  };
  for (const auto& hours : std::vector<std::vector<std::int16_t>>{
           {-5}, {5, -4}, {-5, 4}, {32767}, {19000, -19001}, {-32768}, {32767, -32768, 1}}) {
    show(std::make_shared<ZQACTape>(1, "odd", std::vector<SequenceValue>{sequenceOf(hours), sequenceOf({hours[0]})}));
    draw(2);
  }
}

TEST_F(TimelineTest, AViewNarrowerThanItsFrameDrawsWithinItself) {
  for (const QSize size : {QSize(17, 5), QSize(18, 6), QSize(1, 1), QSize(20, 4)}) {
    view_.resize(size);
    show(makeTimelineTape({{{.frames = 100, .marked = true}}}));
  }
  view_.resize(0, 0);
  view_.refresh();
}

// The same rules once more, in the plainest way.

struct Layout {
  std::vector<Rect> sequences;
  std::vector<Rect> clips;
};

Layout naiveLayout(const ZQACTape& tape, int width, int height) {
  Layout layout;
  const float bar = static_cast<float>(width) - 18.0F;
  const float s = bar / static_cast<float>(tape.totalDurationInFrame());
  const auto clipS = static_cast<float>(static_cast<double>(bar) / tape.totalDurationInFrame());
  float x = 9;
  for (const SequenceValue& sequence : tape.allSequences()) {
    x = static_cast<float>(static_cast<int>(x));
    layout.sequences.push_back(
        {x, 3, static_cast<float>(sequence->totalDurationInFrame()) * s, static_cast<float>(height) - 6.0F});
    float clipX = x + 3;
    for (const ClipValue& clip : sequence->allClips()) {
      clipX = static_cast<float>(static_cast<int>(clipX));
      layout.clips.push_back(
          {clipX, 3, static_cast<float>(clip->durationInFrame()) * clipS, static_cast<float>(height) - 6.0F});
      clipX = clipX + layout.clips.back().width;
    }
    x = x + layout.sequences.back().width;
  }
  return layout;
}

/// Pixel by pixel: what a rectangle covers of a pixel's width is how much of its colour the pixel takes. Rectangles are
/// whole points high.
class NaivePicture {
 public:
  NaivePicture(int width, int height) : width_(width), height_(height), columns_(static_cast<std::size_t>(width)) {
    for (Column& column : columns_) column = {255, 0, 0};
  }
  void fill(double left, double right, const QColor& color) {
    for (int x = 0; x < width_; ++x) {
      const double covered = std::min<double>(right, x + 1) - std::max<double>(left, x);
      if (covered <= 0) continue;
      Column& column = columns_[static_cast<std::size_t>(x)];
      const Column mixed{color.red() * covered, color.green() * covered, color.blue() * covered};
      for (std::size_t i = 0; i < 3; ++i) column[i] = column[i] * (1 - covered) + mixed[i];
    }
  }
  /// How far the image is from it at most, within the track.
  double distanceTo(const QImage& image) const {
    double distance = 0;
    for (int y = 3; y < height_ - 3; ++y) {
      for (int x = 0; x < width_; ++x) {
        const QColor color = image.pixelColor(x, y);
        const Column& column = columns_[static_cast<std::size_t>(x)];
        distance = std::max({distance, std::abs(color.red() - column[0]), std::abs(color.green() - column[1]),
                             std::abs(color.blue() - column[2])});
      }
    }
    return distance;
  }

 private:
  using Column = std::array<double, 3>;

  const int width_;
  const int height_;
  std::vector<Column> columns_;
};

NaivePicture naivePicture(const ZQACTape& tape, const ZQACClip* active, int width, int height) {
  const Layout layout = naiveLayout(tape, width, height);
  NaivePicture picture(width, height);
  std::size_t s = 0;
  std::size_t c = 0;
  for (const SequenceValue& sequence : tape.allSequences()) {
    const Rect place = layout.sequences[s++];
    picture.fill(place.x + 3, place.x + place.width - 3, kSequence);
    for (const ClipValue& clip : sequence->allClips()) {
      const Rect r = layout.clips[c++];
      if (clip->isRecapture()) picture.fill(r.x, r.x + r.width, kMarked);
      if (clip.get() == active) picture.fill(r.x, r.x + r.width, kActive);
      picture.fill(r.x + r.width - 1, r.x + r.width + 1, kSeparator);
    }
  }
  return picture;
}

class RandomTimelineTest : public TimelineTest, public testing::WithParamInterface<int> {
 protected:
  int pick(int low, int high) { return std::uniform_int_distribution(low, high)(random_); }

  TapeValue randomTape() {
    std::vector<std::vector<TimelineClip>> plans(static_cast<std::size_t>(pick(1, 12)));
    for (auto& plan : plans) {
      plan.resize(static_cast<std::size_t>(pick(1, 9)));
      for (TimelineClip& clip : plan) clip = {.frames = pick(1, 5000), .marked = pick(0, 1) == 1};
    }
    return makeTimelineTape(plans);
  }

  std::mt19937 random_{static_cast<unsigned>(GetParam())};
};

TEST_P(RandomTimelineTest, IsLaidOutAndDrawnAsByTheRules) {
  view_.resize(pick(60, 1600), pick(12, 60));
  show(randomTape());
  view_.setCurrentClip(clipAt(tape_, 0, 0));
  const QImage image = draw();

  const Layout layout = naiveLayout(*tape_, view_.width(), view_.height());
  std::size_t s = 0;
  std::size_t c = 0;
  for (const SequenceValue& sequence : tape_->allSequences()) {
    EXPECT_EQ(sequence->posInTimeline(), layout.sequences[s++]);
    for (const ClipValue& clip : sequence->allClips()) EXPECT_EQ(clip->posInTimeline(), layout.clips[c++]);
  }
  const ClipValue active = view_.currentClip();
  EXPECT_LE(naivePicture(*tape_, active.get(), view_.width(), view_.height()).distanceTo(image), 8);
}

INSTANTIATE_TEST_SUITE_P(Seed, RandomTimelineTest, testing::Range(0, 25));

}  // namespace
}  // namespace zq::test
