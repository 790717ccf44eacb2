// What the strip does with what it is told, and whom it tells.

#include "views/thumbnail_view.h"

#include <gtest/gtest.h>

#include <QHelpEvent>
#include <QToolTip>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "views/paint_watcher.h"
#include "views/strip_fixture.h"

namespace zq::test {
namespace {

using Notes = std::vector<std::string>;

class ThumbnailViewTest : public StripTest {
 protected:
  /// Empty when the view has none there. Its text is that of the last one that was shown, whatever was asked since.
  QString toolTipAt(int x, int y) {
    const QPoint place(x, view_.height() - y);
    QHelpEvent event(QEvent::ToolTip, place, place);
    event.accept();
    QApplication::sendEvent(&view_, &event);
    return event.isAccepted() ? QToolTip::text() : QString();
  }
};

TEST_F(ThumbnailViewTest, BeginsEmptyAndIdleWithTheMouseOn) {
  const ZQACThumbnailView view(runtime_);
  EXPECT_EQ(view.activeSequence(), nullptr);
  EXPECT_EQ(view.activeClip(), nullptr);
  EXPECT_EQ(view.clipBeingRecap(), nullptr);
  EXPECT_EQ(view.bindingAreaView(), nullptr);
  EXPECT_EQ(view.cursorTimecode(), nullTimecode);
  EXPECT_TRUE(view.isMouseDownActive());
  EXPECT_EQ(view.animationTimer(), nullptr);
  EXPECT_EQ(view.rollingTimer(), nullptr);
  EXPECT_EQ(view.state().firstPosterImagePosX, 0);
  EXPECT_EQ(view.state().transparency, 0);
  EXPECT_FALSE(view.state().willRollToLeft || view.state().willRollToRight);
  EXPECT_FALSE(view.state().rollingToLeftArea.isInstalled());
}

TEST_F(ThumbnailViewTest, PutsAShortStripInTheMiddle) {
  show(stripOf(3));
  EXPECT_EQ(position(), 60);
  EXPECT_EQ(clip(0)->posterImagePos(), (platform::Rect{60, 9, 60, 40}));
  EXPECT_EQ(clip(1)->posterImagePos().x, 120);
  EXPECT_EQ(clip(2)->posterImagePos().x, 180);
  EXPECT_EQ(clip(2)->progressBar(), (platform::Rect{182, 0, 56, 6}));
  EXPECT_FALSE(view_.state().rollingToLeftArea.isInstalled());
  EXPECT_FALSE(view_.state().rollingToRightArea.isInstalled());
}

TEST_F(ThumbnailViewTest, PutsALongStripAtItsStartAndInstallsTheBands) {
  show(stripOf(10));
  EXPECT_EQ(position(), 0);
  EXPECT_TRUE(view_.state().rollingToLeftArea.isInstalled());
  EXPECT_TRUE(view_.state().rollingToRightArea.isInstalled());
  EXPECT_EQ(view_.state().rollingToLeftArea.rect(), (platform::Rect{290, 10, 10, 40}));
  EXPECT_EQ(view_.state().rollingToRightArea.rect(), (platform::Rect{0, 10, 10, 40}));
}

TEST_F(ThumbnailViewTest, AStripExactlyAsWideAsTheViewNeedsNoBands) {
  show(stripOf(5));
  EXPECT_EQ(position(), 0);
  EXPECT_FALSE(view_.state().rollingToLeftArea.isInstalled());
}

TEST_F(ThumbnailViewTest, NewSequenceIsToldToTheBindingAreaAndDrawnLater) {
  view_.setActiveSequence(stripOf(3));
  EXPECT_EQ(bindingArea_.takeNotes(), Notes{"sequence 1"});
  runPosted(runtime_);
  EXPECT_EQ(bindingArea_.takeNotes(), Notes{"refresh"});
  view_.setActiveSequence(nullptr);
  runPosted(runtime_);
  EXPECT_EQ(bindingArea_.takeNotes(), (Notes{"sequence none", "refresh"}));
}

TEST_F(ThumbnailViewTest, TheSameSequenceAgainDoesNothing) {
  show(stripOf(10));
  view_.setActiveClip(clip(9));
  view_.findFirstPosterImagePosWithActivePosterImagePos(0);
  runPosted(runtime_);
  bindingArea_.takeNotes();
  view_.setActiveSequence(sequence_);
  runPosted(runtime_);
  EXPECT_EQ(bindingArea_.takeNotes(), Notes{});
  EXPECT_EQ(position(), -300);
  view_.setActiveSequence(stripOf(10));  // equal, but another object
  EXPECT_EQ(position(), 0);
}

TEST_F(ThumbnailViewTest, NewClipIsToldToTheBindingAreaOnce) {
  show(stripOf(3));
  view_.setActiveClip(clip(1));
  EXPECT_EQ(bindingArea_.takeNotes(), Notes{"clip 1"});
  runPosted(runtime_);
  EXPECT_EQ(bindingArea_.takeNotes(), Notes{"refresh"});
  view_.setActiveClip(clip(1));
  runPosted(runtime_);
  EXPECT_EQ(bindingArea_.takeNotes(), Notes{});
  EXPECT_EQ(view_.activeClip(), clip(1));
}

TEST_F(ThumbnailViewTest, ClipBeingRecapturedIsDrawnWhenItIsAnotherOne) {
  show(stripOf(3));
  view_.setClipBeingRecap(clip(2));
  runPosted(runtime_);
  EXPECT_EQ(bindingArea_.takeNotes(), Notes{"refresh"});
  view_.setClipBeingRecap(clip(2));
  runPosted(runtime_);
  EXPECT_EQ(bindingArea_.takeNotes(), Notes{});
  EXPECT_EQ(view_.clipBeingRecap(), clip(2));
}

TEST_F(ThumbnailViewTest, CursorDrawsTheBarOfTheClipBeingRecapturedOnly) {
  show(makeStrip({{.marked = true}, {.marked = true}, {.marked = true}}));
  view_.setClipBeingRecap(clip(1));
  PaintWatcher painted(view_);
  runPosted(runtime_);
  painted.takeAreas();
  bindingArea_.takeNotes();
  view_.setCursorTimecode(palTimecode(120));
  EXPECT_EQ(view_.cursorTimecode(), palTimecode(120));
  EXPECT_TRUE(painted.takeAreas().empty()) << "not before the main thread is free";
  runPosted(runtime_);
  EXPECT_EQ(painted.takeAreas(), std::vector<QRect>{QRect(122, 44, 56, 6)});
  EXPECT_EQ(bindingArea_.takeNotes(), Notes{});
  view_.setCursorTimecode(palTimecode(120));  // the same again
  runPosted(runtime_);
  EXPECT_EQ(painted.takeAreas().size(), 1U);
}

TEST_F(ThumbnailViewTest, CursorWithoutAClipBeingRecapturedDrawsNothing) {
  show(stripOf(3));
  PaintWatcher painted(view_);
  runPosted(runtime_);
  painted.takeAreas();
  view_.setCursorTimecode(palTimecode(1));
  runPosted(runtime_);
  EXPECT_TRUE(painted.takeAreas().empty());
}

TEST_F(ThumbnailViewTest, RefreshDrawsTheWholeViewAndTheBindingArea) {
  PaintWatcher painted(view_);
  painted.takeAreas();
  view_.refresh();
  EXPECT_EQ(painted.takeAreas(), std::vector<QRect>{view_.rect()});
  EXPECT_EQ(bindingArea_.takeNotes(), Notes{"refresh"});
}

TEST_F(ThumbnailViewTest, AnAreaIsCountedFromTheLowerEdgeAndBoundedByTheView) {
  PaintWatcher painted(view_);
  view_.refreshInRect({10, 0, 4, 6});
  EXPECT_EQ(painted.takeAreas(), std::vector<QRect>{QRect(10, 44, 4, 6)});
  constexpr float kNoNumber = std::numeric_limits<float>::quiet_NaN();
  view_.refreshInRect({400, 0, 10, 46});
  view_.refreshInRect({});
  view_.refreshInRect({-1e30F, 0, 1e20F, 46});
  view_.refreshInRect({kNoNumber, 0, 10, 46});
  view_.refreshInRect({10, kNoNumber, 10, 46});
  view_.refreshInRect({10, 0, kNoNumber, 46});
  view_.refreshInRect({10, 0, 10, kNoNumber});
  EXPECT_TRUE(painted.takeAreas().empty());
  view_.refreshInRect({-1e30F, -1e30F, 2e30F, 2e30F});
  EXPECT_EQ(painted.takeAreas(), std::vector<QRect>{view_.rect()});
}

// The binding area reads where clips are, and may be drawn first.
TEST_F(ThumbnailViewTest, ARedrawThatMovedTheClipsIsToldToTheBindingArea) {
  show(stripOf(10));
  draw();
  runPosted(runtime_);
  EXPECT_EQ(bindingArea_.takeNotes(), Notes{}) << "nothing moved";
  view_.setActiveClip(clip(5));
  view_.findFirstPosterImagePosWithActivePosterImagePos(0);
  runPosted(runtime_);
  bindingArea_.takeNotes();
  draw();
  runPosted(runtime_);
  EXPECT_EQ(bindingArea_.takeNotes(), Notes{"refresh"});
}

TEST_F(ThumbnailViewTest, WorksWithoutABindingArea) {
  view_.setBindingAreaView(nullptr);
  show(stripOf(10));
  view_.setActiveClip(clip(1));
  view_.refresh();
  runPosted(runtime_);
  EXPECT_EQ(bindingArea_.takeNotes(), Notes{});
}

TEST_F(ThumbnailViewTest, SettersOfAnotherThreadAreDrawnByTheMainThread) {
  show(makeStrip(std::vector<StripClip>(10, StripClip{.marked = true})));
  PaintWatcher painted(view_);
  runPosted(runtime_);
  painted.takeAreas();
  bindingArea_.takeNotes();
  const SequenceValue other = stripOf(20, "2");
  runtime_
      .startThread("frames",
                   [&] {
                     view_.setActiveSequence(other);
                     view_.setActiveClip(other->allClips()[3]);
                     view_.setClipBeingRecap(other->allClips()[3]);
                     view_.setCursorTimecode(palTimecode(120));
                     view_.refresh();
                   })
      ->join();
  EXPECT_EQ(bindingArea_.takeNotes(), (Notes{"sequence 2", "clip 3"}));
  EXPECT_TRUE(painted.takeAreas().empty());
  runPosted(runtime_);
  EXPECT_EQ(bindingArea_.takeNotes(), Notes(4, "refresh"));
  EXPECT_EQ(painted.takeAreas(), std::vector<QRect>{view_.rect()});
}

TEST_F(ThumbnailViewTest, WhatIsStillPostedWhenItIsDestroyedIsDropped) {
  auto view = std::make_unique<ZQACThumbnailView>(runtime_);
  view->setBindingAreaView(&bindingArea_);
  view->setActiveSequence(stripOf(2));
  bindingArea_.takeNotes();
  view.reset();
  runPosted(runtime_);
  EXPECT_EQ(bindingArea_.takeNotes(), Notes{});
}

TEST_F(ThumbnailViewTest, FindsTheClipWhosePosterIsAtAPoint) {
  show(stripOf(3));  // from 60 to 240
  EXPECT_EQ(view_.findThumbnailForPoint({60, 9}), clip(0));
  EXPECT_EQ(view_.findThumbnailForPoint({119.5F, 48.9F}), clip(0));
  EXPECT_EQ(view_.findThumbnailForPoint({120, 30}), clip(1));
  EXPECT_EQ(view_.findThumbnailForPoint({239, 30}), clip(2));
  EXPECT_EQ(view_.findThumbnailForPoint({240, 30}), nullptr);
  EXPECT_EQ(view_.findThumbnailForPoint({59, 30}), nullptr);
  EXPECT_EQ(view_.findThumbnailForPoint({100, 49}), nullptr);
  EXPECT_EQ(view_.findThumbnailForPoint({100, 8}), nullptr);
  view_.setActiveSequence(nullptr);
  EXPECT_EQ(view_.findThumbnailForPoint({100, 30}), nullptr);
}

TEST_F(ThumbnailViewTest, CentresForAnyCount) {
  view_.findFirstPosterImagePosWithClipCount(1);
  EXPECT_EQ(position(), 120);
  view_.findFirstPosterImagePosWithClipCount(5);
  EXPECT_EQ(position(), 0);
  view_.findFirstPosterImagePosWithClipCount(2'000'000'000);
  EXPECT_EQ(position(), 0);
  view_.findFirstPosterImagePosWithClipCount(-2'000'000'000);
  EXPECT_EQ(position(), 150);
}

TEST_F(ThumbnailViewTest, ASequenceSetBeforeTheViewIsLaidOutIsPlacedWhenItIs) {
  ZQACThumbnailView view(runtime_);
  view.setActiveSequence(stripOf(10));  // before it has a size
  view.resize(300, kHeight);
  pictureOf(view);
  EXPECT_EQ(view.state().firstPosterImagePosX, 0);
  EXPECT_TRUE(view.state().rollingToLeftArea.isInstalled());
  EXPECT_EQ(view.state().rollingToLeftArea.rect(), (platform::Rect{290, 10, 10, 40}));
  view.resize(700, 60);
  pictureOf(view);
  EXPECT_EQ(view.state().firstPosterImagePosX, 50);
}

TEST_F(ThumbnailViewTest, AHigherViewKeepsTheScrollPosition) {
  show(stripOf(10));
  view_.setActiveClip(clip(5));
  view_.findFirstPosterImagePosWithActivePosterImagePos(0);
  view_.resize(300, 80);
  draw();
  EXPECT_EQ(position(), -180);
  EXPECT_EQ(clip(3)->posterImagePos(), (platform::Rect{0, 9, 60, 40}));
}

TEST_F(ThumbnailViewTest, IsDescribedByTheActiveClipsName) {
  show(stripOf(3));
  EXPECT_EQ(view_.accessibleName(), "Thumbnail strip");
  EXPECT_EQ(view_.accessibleDescription(), "");
  view_.setActiveClip(clip(2));
  runPosted(runtime_);
  EXPECT_EQ(view_.accessibleDescription(), "Clip 2");
  view_.setActiveClip(nullptr);
  runPosted(runtime_);
  EXPECT_EQ(view_.accessibleDescription(), "");
}

TEST_F(ThumbnailViewTest, PostersHaveToolTips) {
  QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
  show(makeStrip({{}, {.trashed = true}}));  // the first from 90 to 150
  view_.show();
  const QString tip = toolTipAt(100, 30);
  for (const char* part : {"Clip 0", "Jul 15, 2004 13:00:05", "00:00:04:00"}) {
    EXPECT_TRUE(tip.contains(part)) << tip.toStdString();
  }
  EXPECT_EQ(toolTipAt(20, 30), "");
  EXPECT_EQ(toolTipAt(160, 30), "") << "nothing is shown there";
}

TEST_F(ThumbnailViewTest, ToolTipsShowNamesAsTheyAreAndLeaveAGlideAlone) {
  ClipRecord record;
  record.clipName = "<b>Sea</b> & sand";
  const auto named = std::make_shared<ZQACClip>(record);
  show(std::make_shared<ZQACSequence>("1", "", std::vector<ClipValue>{named}, dateAfter(0)));
  view_.show();
  view_.triggerRelocationTimerWithOffset(10);
  const QString tip = toolTipAt(150, 30);
  EXPECT_TRUE(tip.contains("&lt;b&gt;Sea&lt;/b&gt; &amp; sand")) << tip.toStdString();
  EXPECT_NE(view_.animationTimer(), nullptr);
}

TEST_F(ThumbnailViewTest, LongSequencesAreDrawnInOneGo) {
  std::vector<StripClip> plans(10'000, StripClip{.marked = true, .poster = flatPoster(Qt::red)});
  show(makeStrip(plans));
  EXPECT_EQ(clip(9'999)->posterImagePos(), (platform::Rect{599'940, 9, 60, 40}));
  view_.setActiveClip(clip(9'999));
  view_.findFirstPosterImagePosWithActivePosterImagePos(0);
  EXPECT_EQ(position(), 300 - 600'000);
  EXPECT_EQ(pixel(draw(), 297, 30), QColor(Qt::red));
}

}  // namespace
}  // namespace zq::test
