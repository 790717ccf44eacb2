// Which clip the mouse, the keyboard and the tool tips find.

#include <gmock/gmock.h>

#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QToolTip>

#include "views/clip_stepping.h"
#include "views/timeline_fixture.h"

namespace zq::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

/// Two sequences, from 9 to 109 and from 109 to 209; clips at 12, 62, 112 and 162, of 50 points each.
class TimelinePickingTest : public TimelineTest {
 protected:
  void SetUp() override {
    show(makeTimelineTape({{{.frames = 50}, {.frames = 50}}, {{.frames = 50}, {.frames = 50}}}));
  }

  /// `y` from the lower edge.
  void click(qreal x, qreal y = 23, Qt::MouseButton button = Qt::LeftButton) {
    const QPointF place(x, view_.height() - y);
    QMouseEvent event(QEvent::MouseButtonPress, place, place, button, button, Qt::NoModifier);
    QCoreApplication::sendEvent(&view_, &event);
  }
  /// Whether the view took the key for itself.
  bool press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    QKeyEvent event(QEvent::KeyPress, key, modifiers);
    QCoreApplication::sendEvent(&view_, &event);
    return event.isAccepted();
  }
  std::string toolTipAt(int x, int y) {
    const QPoint place(x, view_.height() - y);
    QHelpEvent event(QEvent::ToolTip, place, view_.mapToGlobal(place));
    QCoreApplication::sendEvent(&view_, &event);
    return event.isAccepted() ? QToolTip::text().toStdString() : "";
  }
  std::string currentClip() const { return view_.currentClip() ? view_.currentClip()->clipId() : "none"; }
  std::string currentSequence() const {
    return view_.currentSequence() ? view_.currentSequence()->sequenceId() : "none";
  }
};

TEST_F(TimelinePickingTest, AClickMakesClipAndSequenceCurrentAndBringsThePictureIntoView) {
  click(70);

  EXPECT_EQ(currentSequence(), "1");
  EXPECT_EQ(currentClip(), "1.2");
  EXPECT_THAT(strip_.takeNotes(), ElementsAre("sequence 1", "clip 1.2", "place 2"));
}

TEST_F(TimelinePickingTest, AClickInTheSameSequenceLeavesTheSequence) {
  click(70);
  strip_.takeNotes();

  click(20);

  EXPECT_THAT(strip_.takeNotes(), ElementsAre("clip 1.1", "place 2"));
}

TEST_F(TimelinePickingTest, AClickOnTheCurrentClipBringsItsPictureIntoViewAgain) {
  click(70);
  strip_.takeNotes();

  click(70);

  EXPECT_THAT(strip_.takeNotes(), ElementsAre("place 2"));
}

TEST_F(TimelinePickingTest, LeftAndLowerEdgesBelongToAClipRightAndUpperDoNot) {
  EXPECT_TRUE(view_.findClipAndSequenceForPoint({12, 3}));
  EXPECT_EQ(currentClip(), "1.1");
  EXPECT_TRUE(view_.findClipAndSequenceForPoint({62, 42.9F}));
  EXPECT_EQ(currentClip(), "1.2");
  EXPECT_TRUE(view_.findClipAndSequenceForPoint({61.9F, 20}));
  EXPECT_EQ(currentClip(), "1.1");

  EXPECT_FALSE(view_.findClipAndSequenceForPoint({62, 43}));
  EXPECT_FALSE(view_.findClipAndSequenceForPoint({62, 2.9F}));
  EXPECT_FALSE(view_.findClipAndSequenceForPoint({8.9F, 20}));
  EXPECT_FALSE(view_.findClipAndSequenceForPoint({209, 20}));
  EXPECT_EQ(currentClip(), "1.1");
}

TEST_F(TimelinePickingTest, AClickMeansTheMiddleOfItsPixel) {
  for (const auto& clip : tape_->sequenceAtIndex(0)->allClips()) clip->setPosInTimeline({12, 0, 50, 46});
  tape_->sequenceAtIndex(0)->setPosInTimeline({9, 0, 100, 46});
  const auto picksAt = [this](qreal fromTop) {
    view_.setCurrentClip(nullptr);
    click(20, view_.height() - fromTop);
    return view_.currentClip() != nullptr;
  };
  EXPECT_TRUE(picksAt(0));
  EXPECT_TRUE(picksAt(45));
  EXPECT_FALSE(picksAt(46));
  EXPECT_FALSE(picksAt(-1));
}

TEST_F(TimelinePickingTest, AClickInTheMarginOfASequenceMakesItCurrentAndNoClip) {
  click(20);
  strip_.takeNotes();

  EXPECT_FALSE(view_.findClipAndSequenceForPoint({110, 23}));
  EXPECT_EQ(currentSequence(), "2");
  EXPECT_EQ(currentClip(), "1.1");
  EXPECT_THAT(strip_.takeNotes(), ElementsAre("sequence 2"));

  click(110);
  EXPECT_THAT(strip_.takeNotes(), IsEmpty()) << "no clip was picked";
}

TEST_F(TimelinePickingTest, TheEndOfAClipBeyondItsSequenceIsTheNextOnesMargin) {
  EXPECT_TRUE(view_.findClipAndSequenceForPoint({108.5F, 23}));
  EXPECT_EQ(currentClip(), "1.2");

  EXPECT_FALSE(view_.findClipAndSequenceForPoint({111.5F, 23}));
  EXPECT_EQ(currentSequence(), "2");
}

TEST_F(TimelinePickingTest, WhereSequencesOverlapTheFirstClipFoundIsPicked) {
  // 200 points for 7 frames: the first sequence ends at 94.7, the second begins at 94, its clip at 97.
  show(makeTimelineTape({{{.frames = 3}}, {{.frames = 4}}}));

  EXPECT_TRUE(view_.findClipAndSequenceForPoint({94.5F, 23}));
  EXPECT_EQ(currentClip(), "1.1");

  // Where the first one has no clip there, the search goes on, and the second becomes current.
  clipAt(tape_, 0, 0)->setPosInTimeline({12, 3, 40, 40});
  EXPECT_FALSE(view_.findClipAndSequenceForPoint({94.5F, 23}));
  EXPECT_EQ(currentSequence(), "2");
}

TEST_F(TimelinePickingTest, SequencesAreComparedByTheirIds) {
  // The same sequence, from another reading of the list; its clips are those that are looked at.
  const SequenceValue twin = makeTimelineSequence("1", {{.frames = 50}, {.frames = 50}});
  twin->allClips()[1]->setPosInTimeline({12, 3, 50, 40});
  view_.setCurrentSequence(twin);
  strip_.takeNotes();

  EXPECT_TRUE(view_.findClipAndSequenceForPoint({20, 23}));

  EXPECT_EQ(view_.currentSequence(), twin);
  EXPECT_EQ(view_.currentClip(), twin->allClips()[1]);
  EXPECT_THAT(strip_.takeNotes(), ElementsAre("clip 1.2"));
}

TEST_F(TimelinePickingTest, AClickDoesNothingWhileTheMouseIsOff) {
  view_.setIsMouseDownActive(false);
  strip_.takeNotes();

  click(70);

  EXPECT_EQ(currentSequence(), "none");
  EXPECT_EQ(currentClip(), "none");
  EXPECT_THAT(strip_.takeNotes(), IsEmpty());

  view_.setIsMouseDownActive(true);
  click(70);
  EXPECT_EQ(currentClip(), "1.2");
}

TEST_F(TimelinePickingTest, OnlyTheLeftButtonPicks) {
  click(70, 23, Qt::RightButton);
  click(70, 23, Qt::MiddleButton);

  EXPECT_EQ(currentClip(), "none");
}

TEST_F(TimelinePickingTest, WithoutATapeThereIsNothingToPick) {
  view_.refreshWithTape(nullptr);

  EXPECT_FALSE(view_.findClipAndSequenceForPoint({70, 23}));
  EXPECT_EQ(toolTipAt(70, 23), "");
  EXPECT_FALSE(press(Qt::Key_Right));
}

TEST_F(TimelinePickingTest, ATapeThatWasNeverDrawnHasNoPlaces) {
  view_.refreshWithTape(makeTimelineTape({{{.frames = 50}}}));

  EXPECT_FALSE(view_.findClipAndSequenceForPoint({70, 23}));
}

// The keyboard.

TEST_F(TimelinePickingTest, IsReachedByTheTabKey) {
  EXPECT_NE(view_.focusPolicy() & Qt::TabFocus, 0);
}

TEST_F(TimelinePickingTest, ArrowsGoFromClipToClipAsClicksDo) {
  EXPECT_TRUE(press(Qt::Key_Right));
  EXPECT_EQ(currentClip(), "1.1");
  EXPECT_THAT(strip_.takeNotes(), ElementsAre("sequence 1", "clip 1.1", "place 2"));

  EXPECT_TRUE(press(Qt::Key_Right));
  EXPECT_EQ(currentClip(), "1.2");
  EXPECT_THAT(strip_.takeNotes(), ElementsAre("clip 1.2", "place 2"));

  EXPECT_TRUE(press(Qt::Key_Right));
  EXPECT_EQ(currentClip(), "2.1");
  EXPECT_THAT(strip_.takeNotes(), ElementsAre("sequence 2", "clip 2.1", "place 2"));

  EXPECT_TRUE(press(Qt::Key_Left));
  EXPECT_EQ(currentClip(), "1.2");
  EXPECT_THAT(strip_.takeNotes(), ElementsAre("sequence 1", "clip 1.2", "place 2"));
}

TEST_F(TimelinePickingTest, HomeAndEndGoToTheTapesEnds) {
  EXPECT_TRUE(press(Qt::Key_End));
  EXPECT_EQ(currentClip(), "2.2");
  EXPECT_EQ(currentSequence(), "2");

  EXPECT_TRUE(press(Qt::Key_Home));
  EXPECT_EQ(currentClip(), "1.1");
  EXPECT_EQ(currentSequence(), "1");
}

TEST_F(TimelinePickingTest, ArrowsStayAtTheTapesEnds) {
  press(Qt::Key_End);
  press(Qt::Key_Right);
  EXPECT_EQ(currentClip(), "2.2");

  press(Qt::Key_Home);
  press(Qt::Key_Left);
  EXPECT_EQ(currentClip(), "1.1");
}

TEST_F(TimelinePickingTest, KeysPickNothingWhileTheMouseIsOff) {
  view_.setIsMouseDownActive(false);

  for (const Qt::Key key : {Qt::Key_Left, Qt::Key_Right, Qt::Key_Home, Qt::Key_End}) EXPECT_FALSE(press(key));

  EXPECT_EQ(currentClip(), "none");
}

TEST_F(TimelinePickingTest, OtherKeysAreLeftToOthers) {
  EXPECT_FALSE(press(Qt::Key_Up));
  EXPECT_FALSE(press(Qt::Key_Space));
  EXPECT_FALSE(press(Qt::Key_Right, Qt::ControlModifier));
  EXPECT_TRUE(press(Qt::Key_Right, Qt::KeypadModifier));
}

std::string steppedFrom(const TapeValue& tape, const ClipPlace& from, ClipStep step) {
  const std::optional<ClipPlace> place = clipAfterStep(*tape, from, step);
  return place ? place->sequence->sequenceId() + ":" + place->clip->clipId() : "none";
}

TEST(ClipStepping, PassesOverSequencesWithoutClips) {
  const TapeValue tape = makeTimelineTape({{}, {{}}, {}, {}, {{}}, {}});
  const ClipPlace first{tape->sequenceAtIndex(1), clipAt(tape, 1, 0)};
  const ClipPlace last{tape->sequenceAtIndex(4), clipAt(tape, 4, 0)};

  EXPECT_EQ(steppedFrom(tape, first, ClipStep::kNext), "5:5.1");
  EXPECT_EQ(steppedFrom(tape, last, ClipStep::kPrevious), "2:2.1");
  EXPECT_EQ(steppedFrom(tape, last, ClipStep::kFirst), "2:2.1");
  EXPECT_EQ(steppedFrom(tape, first, ClipStep::kLast), "5:5.1");
  EXPECT_EQ(steppedFrom(tape, first, ClipStep::kPrevious), "none");
  EXPECT_EQ(steppedFrom(tape, last, ClipStep::kNext), "none");
}

TEST(ClipStepping, FromNoClipGoesIntoTheSequence) {
  const TapeValue tape = makeTimelineTape({{{}, {}}, {{}, {}}});

  EXPECT_EQ(steppedFrom(tape, {tape->sequenceAtIndex(1), nullptr}, ClipStep::kNext), "2:2.1");
  EXPECT_EQ(steppedFrom(tape, {tape->sequenceAtIndex(0), nullptr}, ClipStep::kPrevious), "1:1.2");
}

TEST(ClipStepping, FromNowhereGoesIntoTheTape) {
  const TapeValue tape = makeTimelineTape({{{}, {}}, {{}, {}}});
  const SequenceValue stranger = makeTimelineSequence("9", {{}});

  EXPECT_EQ(steppedFrom(tape, {}, ClipStep::kNext), "1:1.1");
  EXPECT_EQ(steppedFrom(tape, {}, ClipStep::kPrevious), "2:2.2");
  EXPECT_EQ(steppedFrom(tape, {stranger, stranger->allClips()[0]}, ClipStep::kNext), "1:1.1");
}

TEST(ClipStepping, KnowsASequenceThatWasMadeAnewByItsId) {
  const TapeValue tape = makeTimelineTape({{{}, {}}, {{}, {}}});
  const SequenceValue twin = makeTimelineSequence("2", {{}, {}});

  EXPECT_EQ(steppedFrom(tape, {twin, nullptr}, ClipStep::kNext), "2:2.1");
}

TEST(ClipStepping, FindsNothingOnAnEmptyTape) {
  const TapeValue tape = makeTimelineTape({{}, {}});

  for (const ClipStep step : {ClipStep::kPrevious, ClipStep::kNext, ClipStep::kFirst, ClipStep::kLast}) {
    EXPECT_EQ(steppedFrom(tape, {}, step), "none");
  }
  EXPECT_EQ(steppedFrom(makeTimelineTape({}), {}, ClipStep::kNext), "none");
}

TEST_F(TimelinePickingTest, WhoComesByTheKeyboardSeesTheFocus) {
  view_.show();
  view_.activateWindow();
  QCoreApplication::processEvents();
  view_.clearFocus();
  const QImage plain = draw();

  view_.setFocus(Qt::MouseFocusReason);
  ASSERT_TRUE(view_.hasFocus());
  EXPECT_EQ(draw(), plain) << "a click needs no frame";

  view_.setAttribute(Qt::WA_KeyboardFocusChange);
  EXPECT_NE(draw(), plain);
}

// Tool tips.

TEST_F(TimelinePickingTest, AToolTipTellsNameDateAndDuration) {
  const std::string toolTip = toolTipAt(70, 23);
  EXPECT_THAT(toolTip, HasSubstr("Clip 1.2"));
  EXPECT_THAT(toolTip, HasSubstr("2004"));
  EXPECT_THAT(toolTip, HasSubstr("13:00:00"));
  EXPECT_THAT(toolTip, HasSubstr("00:00:02:00"));
  EXPECT_EQ(currentClip(), "none") << "nothing was picked";
  EXPECT_EQ(currentSequence(), "none");
}

TEST_F(TimelinePickingTest, BesideTheClipsThereIsNoToolTip) {
  toolTipAt(70, 23);

  EXPECT_EQ(toolTipAt(5, 23), "");
}

TEST_F(TimelinePickingTest, ANameIsNeverMarkup) {
  ClipRecord record;
  record.clipName = "<b>A & B</b>";
  const auto clip = std::make_shared<ZQACClip>(record);
  const auto sequence = std::make_shared<ZQACSequence>("1", "S", std::vector<ClipValue>{clip}, dateAfter(0));
  view_.refreshWithTape(std::make_shared<ZQACTape>(1, "T", std::vector<SequenceValue>{sequence}));
  sequence->setPosInTimeline({0, 0, 100, 40});
  clip->setPosInTimeline({0, 0, 100, 40});

  EXPECT_THAT(toolTipAt(50, 20), HasSubstr("&lt;b&gt;A &amp; B&lt;/b&gt;"));
}

}  // namespace
}  // namespace zq::test
