// The strip and the overlay are told by a second thread while the main thread draws them: for ThreadSanitizer.

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <utility>
#include <vector>

#include "backends/time/real_runtime.h"
#include "support/qt_application.h"
#include "views/strip_fixture.h"
#include "views/timecode_and_date_view.h"

namespace zq::test {
namespace {

constexpr int kRounds = 300;

/// Only counts: it is told by two threads.
class CountingBindingArea final : public outlets::BindingArea {
 public:
  void setActiveSequence(SequenceValue /*sequence*/) override { ++sequences; }
  void setActiveClip(ClipValue /*clip*/) override { ++clips; }
  void refresh() override { ++refreshes; }

  std::atomic<int> sequences = 0;
  std::atomic<int> clips = 0;
  std::atomic<int> refreshes = 0;
};

class StripRealThreadsTest : public QtTest {
 protected:
  /// Runs `tell` on another thread, and draws the view for as long as that takes and once more.
  void drawWhile(QWidget& view, std::function<void()> tell) {
    std::atomic<bool> done = false;
    const auto thread = runtime_.startThread("frames", [&done, tell = std::move(tell)] {
      tell();
      done = true;
    });
    do {
      runPosted(runtime_);
      pictureOf(view);
    } while (!done);
    thread->join();
    runPosted(runtime_);
    pictureOf(view);
  }

  backend::RealRuntime runtime_;
};

TEST_F(StripRealThreadsTest, StripIsToldWhileItIsDrawnAndMoves) {
  CountingBindingArea bindingArea;
  ZQACThumbnailView view(runtime_);
  view.resize(300, 50);
  view.setBindingAreaView(&bindingArea);
  const SequenceValue sequences[] = {makeStrip(std::vector<StripClip>(20, StripClip{.marked = true}), "1"),
                                     makeStrip(std::vector<StripClip>(3), "2")};
  view.setActiveSequence(sequences[0]);
  view.mouseEntered({295, 30});
  view.triggerRelocationTimerWithOffset(100);
  drawWhile(view, [&] {
    for (int round = 0; round < kRounds; ++round) {
      const SequenceValue& sequence = sequences[round % 2];
      const ClipValue& clip = sequence->allClips()[static_cast<std::size_t>(round % 3)];
      view.setActiveSequence(sequence);
      view.setActiveClip(clip);
      view.setClipBeingRecap(clip);
      view.setCursorTimecode(palTimecode(100 + round % 100));
      view.setIsMouseDownActive(round % 2 == 0);
      view.refresh();
      EXPECT_EQ(view.activeClip(), clip);
      EXPECT_EQ(view.cursorTimecode(), palTimecode(100 + round % 100));
    }
  });
  EXPECT_EQ(view.activeSequence(), sequences[(kRounds - 1) % 2]);
  EXPECT_FALSE(view.isMouseDownActive());
  EXPECT_EQ(bindingArea.sequences, kRounds) << "the one that was there, then every other one";
  EXPECT_EQ(bindingArea.clips, kRounds);
  EXPECT_GE(bindingArea.refreshes, kRounds);
}

TEST_F(StripRealThreadsTest, OverlayIsToldWhileItIsDrawn) {
  QWidget window;
  window.resize(640, 480);
  ZQTimecodeAndDateView view(runtime_, &window);
  view.resize(640, 480);
  window.show();
  DateValue date;
  drawWhile(view, [&] {
    for (int round = 0; round < kRounds; ++round) {
      date = round % 3 == 0 ? nullptr : dateAfter(round % 60);
      view.setTimecode(palTimecode(round));
      view.setDate(date);
      view.setHidden(round % 2 == 0);
    }
  });
  EXPECT_EQ(view.timecode(), palTimecode(kRounds - 1));
  EXPECT_EQ(view.date(), date);
  EXPECT_TRUE(view.isVisible());
}

}  // namespace
}  // namespace zq::test
