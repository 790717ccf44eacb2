// Where the cursor stands, and how little is drawn anew when it moves.

#include <gmock/gmock.h>

#include <QBackingStore>
#include <QImage>
#include <cmath>

#include "timecode/timecode_utils.h"
#include "views/paint_watcher.h"
#include "views/timeline_fixture.h"

namespace zq::test {
namespace {

using platform::Rect;
using testing::ElementsAre;
using testing::IsEmpty;

/// Two sequences of 1000 frames, 100 points each, at 9 and 109. The second has clips of 10 s, 20 s and 10 s. The frame
/// is blue, so that only the cursor is red.
class TimelineCursorTest : public TimelineTest {
 protected:
  void SetUp() override {
    for (const char* name : {"timelineLeft", "timelineMiddle", "timelineRight"}) skin_.addFlat(name, "#0000ff");
    skin_.install();
    show(makeTimelineTape({{{.frames = 1000}},
                           {{.frames = 250, .date = 100, .firstFrame = 5000},
                            {.frames = 500, .date = 200, .firstFrame = 6000},
                            {.frames = 250, .date = 300, .firstFrame = 7000}}}));
    view_.setCurrentSequence(tape_->sequenceAtIndex(1));
    runPosted(runtime_);
    strip_.takeNotes();
  }

  void moveTo(int date, int frame) {
    view_.setCursorTimecode(palTimecode(frame));
    view_.setCursorDate(dateAfter(date));
  }
  /// The middle of the area to repaint, when the cursor was there before too.
  float headX() {
    view_.computeCursorHeadPos();  // the second time from where it is
    const Rect area = view_.cursorRect();
    EXPECT_EQ(area.width, 4);
    return area.x + 2;
  }
  static bool isCursor(const QColor& color) { return color == QColor(255, 0, 0); }
};

TEST_F(TimelineCursorTest, StandsInTheSequenceInProportionToItsFrames) {
  moveTo(100, 5000);
  EXPECT_FLOAT_EQ(headX(), 109);
  moveTo(204, 6100);  // 250 frames and 100
  EXPECT_FLOAT_EQ(headX(), 144);
  moveTo(310, 7250);
  EXPECT_FLOAT_EQ(headX(), 209);
}

TEST_F(TimelineCursorTest, TheTimecodeCountsNotTheDate) {
  moveTo(200, 6400);

  EXPECT_FLOAT_EQ(headX(), 109 + 65);
}

TEST_F(TimelineCursorTest, BothEndsOfAClipHoldTheCursor) {
  moveTo(100, 5000);
  EXPECT_FLOAT_EQ(headX(), 109);
  moveTo(110, 5249);  // 10 s later, to the second
  EXPECT_FLOAT_EQ(headX(), 109 + 24.9F);
}

TEST_F(TimelineCursorTest, OfTwoClipsThatHoldTheDateTheFirstIsTaken) {
  const SequenceValue sequence = makeTimelineSequence(
      "x", {{.frames = 250, .date = 0, .firstFrame = 0}, {.frames = 250, .date = 10, .firstFrame = 250}});
  sequence->setPosInTimeline({0, 0, 100, 40});
  view_.setCurrentSequence(sequence);

  moveTo(10, 250);  // the first clip's end date is the second one's start

  EXPECT_FLOAT_EQ(headX(), 50) << "250 frames into the first clip";
  moveTo(10, 260);
  EXPECT_FLOAT_EQ(headX(), 52);
}

TEST_F(TimelineCursorTest, ADateInNoClipLeavesTheCursorAndTheTimecode) {
  moveTo(204, 6100);
  runPosted(runtime_);
  const Rect area = view_.cursorRect();

  for (const int date : {99, 111, 199, 311, 5000, -5}) {
    moveTo(date, 0);
    EXPECT_EQ(view_.cursorRect(), area) << date;
    EXPECT_EQ(view_.cursorTimecode(), palTimecode(0)) << "is not replaced";
  }
}

TEST_F(TimelineCursorTest, ATimecodeBeforeTheClipIsReplacedByItsStartWithoutTellingTheStrip) {
  moveTo(205, 4000);

  EXPECT_EQ(view_.cursorTimecode(), palTimecode(6000));
  EXPECT_THAT(strip_.takeNotes(), ElementsAre("cursor 00:02:40:00"));
  EXPECT_FLOAT_EQ(headX(), 109 + 25);
}

TEST_F(TimelineCursorTest, TheFirstAreaReachesFromTheLeftEdge) {
  moveTo(204, 6100);

  EXPECT_EQ(view_.cursorRect(), (Rect{-2, 0, 144 + 4, 46}));
}

TEST_F(TimelineCursorTest, TheAreaCoversTheOldLineAndTheNewOne) {
  moveTo(204, 6100);
  moveTo(205, 6150);
  EXPECT_EQ(view_.cursorRect(), (Rect{142, 0, 9, 46}));
  moveTo(204, 6100);
  EXPECT_EQ(view_.cursorRect(), (Rect{142, 0, 9, 46}));
}

TEST_F(TimelineCursorTest, TheSameDateObjectMovesNothing) {
  const DateValue date = dateAfter(204);
  view_.setCursorTimecode(palTimecode(6100));
  view_.setCursorDate(date);
  EXPECT_EQ(view_.cursorDate(), date);
  const Rect area = view_.cursorRect();

  view_.setCursorTimecode(palTimecode(6300));
  view_.setCursorDate(date);
  EXPECT_EQ(view_.cursorRect(), area);

  view_.setCursorDate(dateAfter(204));
  EXPECT_NE(view_.cursorRect(), area);
}

TEST_F(TimelineCursorTest, WithoutDateOrSequenceTheCursorStays) {
  view_.setCursorDate(nullptr);
  EXPECT_EQ(view_.cursorRect(), Rect{});
  view_.setCurrentSequence(nullptr);
  moveTo(204, 6100);
  EXPECT_EQ(view_.cursorRect(), Rect{});
}

TEST_F(TimelineCursorTest, ClipsWithoutADateHoldNone) {
  const auto clip = std::make_shared<ZQACClip>(ClipRecord{});
  view_.setCurrentSequence(std::make_shared<ZQACSequence>("x", "X", std::vector<ClipValue>{clip}, dateAfter(0)));

  moveTo(0, 0);

  EXPECT_EQ(view_.cursorRect(), Rect{});
}

TEST_F(TimelineCursorTest, ASequenceWithoutFramesHoldsTheCursorAtItsLeft) {
  const SequenceValue sequence = makeTimelineSequence("x", {{.frames = 0}});
  sequence->setPosInTimeline({30, 3, 0, 40});
  view_.setCurrentSequence(sequence);

  moveTo(0, 0);

  EXPECT_FLOAT_EQ(headX(), 30);
}

TEST_F(TimelineCursorTest, OddTimecodesMoveItOutOfTheViewAtMost) {
  SMPTETime odd;
  odd.mHours = 32767;
  odd.mFrames = 32767;
  view_.setCursorTimecode(odd);
  view_.setCursorDate(dateAfter(204));
  runPosted(runtime_);
  draw();

  EXPECT_TRUE(std::isfinite(view_.cursorRect().x));
}

// What is drawn.

TEST_F(TimelineCursorTest, IsALineTwoPointsWideThatEndsTwoPointsBelowTheTop) {
  moveTo(204, 6100);  // 144
  for (const qreal scale : {1.0, 2.0}) {
    const QImage image = draw(scale);
    EXPECT_FALSE(isCursor(colorAt(image, 142.6, 20)));
    EXPECT_TRUE(isCursor(colorAt(image, 143.1, 20)));
    EXPECT_TRUE(isCursor(colorAt(image, 144.9, 20)));
    EXPECT_FALSE(isCursor(colorAt(image, 145.1, 20)));
    EXPECT_TRUE(isCursor(colorAt(image, 144, 45.9))) << "down to the lower edge";
    EXPECT_TRUE(isCursor(colorAt(image, 144, 2.1)));
    EXPECT_FALSE(isCursor(colorAt(image, 144, 1.9)));
  }
}

TEST_F(TimelineCursorTest, IsDrawnOverTheClips) {
  view_.setCurrentClip(clipAt(tape_, 1, 1));
  moveTo(204, 6100);

  EXPECT_TRUE(isCursor(colorAt(draw(), 144, 20)));
}

TEST_F(TimelineCursorTest, TheEmptyRectangleHidesIt) {
  moveTo(204, 6100);
  view_.setCursorRect({});

  EXPECT_EQ(view_.cursorRect(), Rect{});
  EXPECT_FALSE(isCursor(colorAt(draw(), 144, 20)));

  moveTo(205, 6100);
  EXPECT_TRUE(isCursor(colorAt(draw(), 144, 20))) << "and the next frame shows it again";
}

TEST_F(TimelineCursorTest, BeforeTheFirstFrameThereIsNone) {
  const QImage image = draw();
  for (int x = 0; x < image.width(); ++x) EXPECT_FALSE(isCursor(image.pixelColor(x, 20)));
}

TEST_F(TimelineCursorTest, FollowsTheSequenceWhenTheViewIsResized) {
  view_.resize(418, 46);  // the second sequence is drawn at 209 from here on
  draw();
  moveTo(204, 6100);

  EXPECT_FLOAT_EQ(headX(), 209 + 70);
}

TEST_F(TimelineCursorTest, FollowsItsFrameWhenTheViewIsResized) {
  moveTo(204, 6100);
  runPosted(runtime_);
  view_.resize(418, 46);
  draw();
  runPosted(runtime_);
  const QImage image = draw();

  EXPECT_FALSE(isCursor(colorAt(image, 144, 20)));
  EXPECT_TRUE(isCursor(colorAt(image, 209 + 70, 20)));
}

TEST_F(TimelineCursorTest, ThatIsHiddenStaysSoWhenTheViewIsResized) {
  moveTo(204, 6100);
  view_.setCursorRect({});
  view_.resize(418, 46);
  draw();
  runPosted(runtime_);
  EXPECT_EQ(view_.cursorRect(), Rect{});

  moveTo(205, 6100);
  view_.resize(218, 46);
  draw();
  view_.setCursorRect({});  // before what the resize posted is carried out
  runPosted(runtime_);
  EXPECT_EQ(view_.cursorRect(), Rect{});
}

// What is drawn anew.

TEST_F(TimelineCursorTest, AFrameDrawsItsAreaOnlyAndOnTheMainThread) {
  moveTo(204, 6100);
  runPosted(runtime_);
  PaintWatcher watcher(view_);

  moveTo(205, 6150);
  EXPECT_THAT(watcher.takeAreas(), IsEmpty()) << "not before the main thread is free";
  runPosted(runtime_);
  EXPECT_THAT(watcher.takeAreas(), ElementsAre(QRect(142, 0, 9, 46)));

  view_.setCursorDate(dateAfter(5000));
  runPosted(runtime_);
  EXPECT_THAT(watcher.takeAreas(), IsEmpty()) << "a date in no clip draws nothing";
}

TEST_F(TimelineCursorTest, TheFirstFrameDrawsFromTheLeftEdge) {
  PaintWatcher watcher(view_);
  moveTo(204, 6100);
  runPosted(runtime_);

  EXPECT_THAT(watcher.takeAreas(), ElementsAre(QRect(0, 0, 146, 46)));
}

TEST_F(TimelineCursorTest, FramesThatComeWhileTheMainThreadIsBusyAreDrawnOnce) {
  moveTo(204, 6000);
  runPosted(runtime_);
  PaintWatcher watcher(view_);

  for (int frame = 1; frame <= 10; ++frame) moveTo(204, 6000 + 10 * frame);
  runPosted(runtime_);

  EXPECT_THAT(watcher.takeAreas(), ElementsAre(QRect(132, 0, 14, 46)));
}

TEST_F(TimelineCursorTest, LeavesNoTraceOfWhereItWas) {
  view_.show();
  for (int i = 0; i <= 71; ++i) {
    moveTo(204, 6000 + 7 * i);
    runPosted(runtime_);
    QCoreApplication::processEvents();
  }
  const QImage onScreen = dynamic_cast<QImage&>(*view_.backingStore()->paintDevice()).copy();

  const float head = headX();
  for (int x = 0; x < onScreen.width(); ++x) {
    const bool isUnderLine = static_cast<float>(x + 1) > head - 1 && static_cast<float>(x) < head + 1;
    EXPECT_EQ(onScreen.pixelColor(x, 20).red() > 100, isUnderLine) << x;
  }
}

TEST_F(TimelineCursorTest, AnAreaOutsideTheViewDrawsNothing) {
  PaintWatcher watcher(view_);

  view_.refreshCursorInRect({300, 0, 10, 46});
  view_.refreshCursorInRect({});
  view_.refreshCursorInRect({-1e30F, 0, 1e20F, 46});
  EXPECT_THAT(watcher.takeAreas(), IsEmpty());

  view_.refreshCursorInRect({-1e30F, -1e30F, 2e30F, 2e30F});
  EXPECT_THAT(watcher.takeAreas(), ElementsAre(QRect(0, 0, 218, 46)));
}

TEST_F(TimelineCursorTest, AnAreaIsCountedFromTheLowerEdge) {
  PaintWatcher watcher(view_);

  view_.refreshCursorInRect({10, 0, 4, 6});

  EXPECT_THAT(watcher.takeAreas(), ElementsAre(QRect(10, 40, 4, 6)));
}

// A second computation, frame by frame.

TEST_F(TimelineCursorTest, AgreesWithCountingFrames) {
  int before = 0;
  for (const ClipValue& clip : tape_->sequenceAtIndex(1)->allClips()) {
    const int start = ZQACTimecodeUtils::timecodeValueAsFramesWithTimebase(clip->timecodeStartClip(), 25);
    for (int frame = 0; frame < clip->durationInFrame(); frame += 13) {
      view_.setCursorTimecode(palTimecode(start + frame));
      view_.setCursorDate(std::make_shared<const CalendarDate>(clip->dateStartClip()->dateByAdding(0, 0, 0, 0, 0, 1)));
      EXPECT_FLOAT_EQ(headX(), static_cast<float>(109 + (before + frame) * 100.0 / 1000));
    }
    before += clip->durationInFrame();
  }
}

}  // namespace
}  // namespace zq::test
