// What the timeline keeps, whom it tells, and what it does when a clip was picked.

#include <gmock/gmock.h>

#include <memory>

#include "views/paint_watcher.h"
#include "views/timeline_fixture.h"

namespace zq::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class TimelineViewTest : public TimelineTest {
 protected:
  void SetUp() override {
    show(makeTimelineTape({{{.frames = 100}, {.frames = 100}}}));
    watcher_ = std::make_unique<PaintWatcher>(view_);
    strip_.takeNotes();
  }

  /// What a task of the main thread, if there is one, has drawn anew.
  std::vector<QRect> drawnAnew() {
    runPosted(runtime_);
    return watcher_->takeAreas();
  }

  const QRect whole_{0, 0, 218, 46};
  std::unique_ptr<PaintWatcher> watcher_;
};

TEST_F(TimelineTest, BeginsWithNothingButTheMouse) {
  ZQACTimelineView view(runtime_);

  EXPECT_EQ(view.thumbnailView(), nullptr);
  EXPECT_EQ(view.timecodeValue(), nullptr);
  EXPECT_EQ(view.currentSequence(), nullptr);
  EXPECT_EQ(view.currentClip(), nullptr);
  EXPECT_EQ(view.cursorDate(), nullptr);
  EXPECT_EQ(view.cursorTimecode(), nullTimecode);
  EXPECT_EQ(view.cursorRect(), platform::Rect{});
  EXPECT_TRUE(view.isMouseDownActive());
}

TEST_F(TimelineViewTest, ATapeIsDrawnWhenTheMainThreadIsFree) {
  view_.refreshWithTape(makeTimelineTape({{{.frames = 3}}}));

  EXPECT_THAT(watcher_->takeAreas(), IsEmpty());
  EXPECT_THAT(drawnAnew(), ElementsAre(whole_));
}

TEST_F(TimelineViewTest, TheSameTapeIsDrawnAnewToo) {
  view_.refreshWithTape(tape_);

  EXPECT_THAT(drawnAnew(), ElementsAre(whole_));
}

TEST_F(TimelineViewTest, ASequenceIsToldToTheStripAndDrawn) {
  view_.setCurrentSequence(tape_->sequenceAtIndex(0));

  EXPECT_EQ(view_.currentSequence(), tape_->sequenceAtIndex(0));
  EXPECT_THAT(strip_.takeNotes(), ElementsAre("sequence 1"));
  EXPECT_THAT(watcher_->takeAreas(), IsEmpty());
  EXPECT_THAT(drawnAnew(), ElementsAre(whole_));
}

TEST_F(TimelineViewTest, TheSameSequenceIsNeitherToldNorDrawn) {
  view_.setCurrentSequence(tape_->sequenceAtIndex(0));
  drawnAnew();
  strip_.takeNotes();

  view_.setCurrentSequence(tape_->sequenceAtIndex(0));

  EXPECT_THAT(strip_.takeNotes(), IsEmpty());
  EXPECT_THAT(drawnAnew(), IsEmpty());
}

TEST_F(TimelineViewTest, AnEqualSequenceIsAnotherOneWhenItIsAnotherObject) {
  view_.setCurrentSequence(makeTimelineSequence("1", {}));
  view_.setCurrentSequence(makeTimelineSequence("1", {}));

  EXPECT_THAT(strip_.takeNotes(), ElementsAre("sequence 1", "sequence 1"));
}

TEST_F(TimelineViewTest, AClipIsToldToTheStripAndDrawn) {
  view_.setCurrentClip(clipAt(tape_, 0, 1));

  EXPECT_EQ(view_.currentClip(), clipAt(tape_, 0, 1));
  EXPECT_THAT(strip_.takeNotes(), ElementsAre("clip 1.2"));
  EXPECT_THAT(watcher_->takeAreas(), IsEmpty());
  EXPECT_THAT(drawnAnew(), ElementsAre(whole_));
}

TEST_F(TimelineViewTest, TheSameClipIsNeitherToldNorDrawn) {
  view_.setCurrentClip(clipAt(tape_, 0, 1));
  drawnAnew();
  strip_.takeNotes();

  view_.setCurrentClip(clipAt(tape_, 0, 1));

  EXPECT_THAT(strip_.takeNotes(), IsEmpty());
  EXPECT_THAT(drawnAnew(), IsEmpty());
}

TEST_F(TimelineViewTest, TheSameClipIsDrawnAnewWhenItIsHighlighted) {
  view_.setCurrentClip(clipAt(tape_, 0, 1));
  drawnAnew();
  strip_.takeNotes();

  view_.highLightTheClip(clipAt(tape_, 0, 1));

  EXPECT_THAT(strip_.takeNotes(), IsEmpty());
  EXPECT_THAT(drawnAnew(), ElementsAre(whole_));
}

TEST_F(TimelineViewTest, AnotherClipThatIsHighlightedIsToldToTheStrip) {
  view_.highLightTheClip(clipAt(tape_, 0, 0));

  EXPECT_EQ(view_.currentClip(), clipAt(tape_, 0, 0));
  EXPECT_THAT(strip_.takeNotes(), ElementsAre("clip 1.1"));
}

TEST_F(TimelineViewTest, NothingIsASequenceAndAClipToo) {
  view_.setCurrentSequence(tape_->sequenceAtIndex(0));
  view_.setCurrentClip(clipAt(tape_, 0, 0));
  strip_.takeNotes();

  view_.setCurrentSequence(nullptr);
  view_.setCurrentClip(nullptr);

  EXPECT_THAT(strip_.takeNotes(), ElementsAre("sequence none", "clip none"));
}

TEST_F(TimelineViewTest, ManyChangesAreDrawnOnce) {
  for (int i = 0; i < 100; ++i) view_.setCurrentClip(clipAt(tape_, 0, static_cast<std::size_t>(i % 2)));

  EXPECT_THAT(drawnAnew(), ElementsAre(whole_));
}

TEST_F(TimelineViewTest, TheCursorsTimecodeIsStoredAndToldEachTime) {
  view_.setCursorTimecode(palTimecode(30));
  view_.setCursorTimecode(palTimecode(30));

  EXPECT_EQ(view_.cursorTimecode(), palTimecode(30));
  EXPECT_THAT(strip_.takeNotes(), ElementsAre("cursor 00:00:01:05", "cursor 00:00:01:05"));
  EXPECT_THAT(drawnAnew(), IsEmpty());
}

TEST_F(TimelineViewTest, TheStripLearnsWhetherTheMouseMayPick) {
  view_.setIsMouseDownActive(false);
  EXPECT_FALSE(view_.isMouseDownActive());
  view_.setIsMouseDownActive(true);
  EXPECT_TRUE(view_.isMouseDownActive());

  EXPECT_THAT(strip_.takeNotes(), ElementsAre("mouse off", "mouse on"));
}

TEST_F(TimelineViewTest, AStripThatWasReplacedIsToldNothingMore) {
  NotingStrip other;
  view_.setThumbnailView(&other);
  view_.setCurrentClip(clipAt(tape_, 0, 0));

  EXPECT_EQ(view_.thumbnailView(), &other);
  EXPECT_THAT(strip_.takeNotes(), IsEmpty());
  EXPECT_THAT(other.takeNotes(), ElementsAre("clip 1.1"));
  view_.setThumbnailView(nullptr);
}

TEST_F(TimelineViewTest, WorksWithoutAStrip) {
  view_.setThumbnailView(nullptr);

  view_.setCurrentSequence(tape_->sequenceAtIndex(0));
  view_.setCurrentClip(clipAt(tape_, 0, 0));
  view_.setCursorTimecode(palTimecode(1));
  view_.setIsMouseDownActive(false);
  view_.myMethodeWhenClipClicked();

  EXPECT_EQ(view_.currentClip(), clipAt(tape_, 0, 0));
  EXPECT_THAT(drawnAnew(), ElementsAre(whole_));
}

TEST_F(TimelineViewTest, RefreshOnTheMainThreadWaitsForNoTask) {
  view_.refresh();

  EXPECT_THAT(watcher_->takeAreas(), ElementsAre(whole_));
}

TEST_F(TimelineViewTest, RefreshOnAnotherThreadIsHandedToTheMainThread) {
  runtime_.startThread("other", [&] { view_.refresh(); })->join();

  EXPECT_THAT(watcher_->takeAreas(), IsEmpty());
  EXPECT_THAT(drawnAnew(), ElementsAre(whole_));
}

TEST_F(TimelineViewTest, WhatWasPostedIsDroppedWithTheView) {
  auto gone = std::make_unique<ZQACTimelineView>(runtime_);
  gone->setCurrentClip(clipAt(tape_, 0, 0));
  gone->refreshWithTape(tape_);
  gone.reset();

  runPosted(runtime_);  // with the address sanitizer, touching the view is an error
}

TEST_F(TimelineViewTest, EverythingIsReleasedWithTheView) {
  auto view = std::make_unique<ZQACTimelineView>(runtime_);
  auto tape = makeTimelineTape({{{.frames = 10}}});
  DateValue date = dateAfter(0);
  const std::weak_ptr<ZQACSequence> sequence = tape->sequenceAtIndex(0);
  const std::weak_ptr<ZQACClip> clip = clipAt(tape, 0, 0);
  const std::weak_ptr<const CalendarDate> heldDate = date;
  const std::weak_ptr<ZQACTape> heldTape = tape;
  view->setCurrentSequence(sequence.lock());
  view->setCurrentClip(clip.lock());
  view->setCursorDate(std::move(date));
  view->refreshWithTape(std::move(tape));

  view.reset();

  EXPECT_TRUE(heldTape.expired());
  EXPECT_TRUE(sequence.expired());
  EXPECT_TRUE(clip.expired());
  EXPECT_TRUE(heldDate.expired());
}

TEST_F(TimelineViewTest, AClickedClipGlidesToTheMiddleOfAStripThatIsWider) {
  show(makeTimelineTape({{{}, {}, {}, {}}}));  // 240 points of pictures
  view_.setCurrentSequence(tape_->sequenceAtIndex(0));
  view_.setCurrentClip(clipAt(tape_, 0, 3));
  clipAt(tape_, 0, 3)->setPosterImagePos({180, 9, 60, 40});
  drawnAnew();
  strip_.takeNotes();

  view_.myMethodeWhenClipClicked();

  EXPECT_THAT(strip_.takeNotes(), ElementsAre("glide " + std::to_string(180.0F + 30 - 109)));
  EXPECT_THAT(drawnAnew(), IsEmpty());
}

TEST_F(TimelineViewTest, AClickedClipLeavesAStripThatFitsInTheMiddle) {
  view_.setCurrentSequence(tape_->sequenceAtIndex(0));
  view_.setCurrentClip(clipAt(tape_, 0, 1));
  drawnAnew();
  strip_.takeNotes();

  view_.myMethodeWhenClipClicked();

  EXPECT_THAT(strip_.takeNotes(), ElementsAre("place 2"));
  EXPECT_THAT(watcher_->takeAreas(), IsEmpty());
  EXPECT_THAT(drawnAnew(), ElementsAre(whole_));
}

TEST_F(TimelineViewTest, AStripJustAsWideAsTheViewDoesNotGlide) {
  view_.resize(240, 46);
  show(makeTimelineTape({{{}, {}, {}, {}}}));
  view_.setCurrentSequence(tape_->sequenceAtIndex(0));
  view_.setCurrentClip(clipAt(tape_, 0, 0));
  strip_.takeNotes();

  view_.myMethodeWhenClipClicked();
  EXPECT_THAT(strip_.takeNotes(), ElementsAre("place 4"));

  view_.resize(239, 46);
  view_.myMethodeWhenClipClicked();
  EXPECT_THAT(strip_.takeNotes(), ElementsAre("glide " + std::to_string(30 - 119.5F)));
}

TEST_F(TimelineViewTest, WithoutACurrentClipAClickMovesNothing) {
  view_.setCurrentSequence(tape_->sequenceAtIndex(0));
  drawnAnew();
  strip_.takeNotes();

  view_.myMethodeWhenClipClicked();

  EXPECT_THAT(strip_.takeNotes(), IsEmpty());
  EXPECT_THAT(drawnAnew(), IsEmpty());
}

TEST_F(TimelineViewTest, ScreenReadersAreToldTheCurrentClip) {
  EXPECT_EQ(view_.accessibleName(), "Timeline");
  EXPECT_EQ(view_.accessibleDescription(), "");

  view_.setCurrentClip(clipAt(tape_, 0, 1));
  runPosted(runtime_);
  EXPECT_EQ(view_.accessibleDescription(), "Clip 1.2, recorded 2004-07-15 13:00:00");

  view_.setCurrentClip(nullptr);
  runPosted(runtime_);
  EXPECT_EQ(view_.accessibleDescription(), "");
}

TEST_F(TimelineViewTest, ScreenReadersAreToldThatAClipHasNoDate) {
  ClipRecord record;
  record.clipName = "Bare";
  view_.setCurrentClip(std::make_shared<ZQACClip>(record));
  runPosted(runtime_);

  EXPECT_EQ(view_.accessibleDescription(), "Bare, undated");
}

}  // namespace
}  // namespace zq::test
