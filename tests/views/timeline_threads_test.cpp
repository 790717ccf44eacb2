// Real threads: frames and choices come from another one while the main thread draws. What is asserted holds in every
// order; the thread sanitizer sees the rest.

#include <gtest/gtest.h>

#include <atomic>

#include "backends/time/real_runtime.h"
#include "views/binding_area_view.h"
#include "views/timeline_fixture.h"

namespace zq::test {
namespace {

constexpr int kFrames = 2000;

/// Passes what a strip passes on to the binding area.
class PassingStrip final : public outlets::ThumbnailStrip {
 public:
  explicit PassingStrip(ZQACBindingAreaView& area) : area_(area) {}

  void setBindingAreaView(outlets::BindingArea* /*view*/) override {}
  void setActiveSequence(SequenceValue sequence) override { area_.setActiveSequence(std::move(sequence)); }
  void setActiveClip(ClipValue clip) override {
    area_.setActiveClip(std::move(clip));
    area_.refresh();
  }
  void setClipBeingRecap(ClipValue /*clip*/) override {}
  void setCursorTimecode(const SMPTETime& /*timecode*/) override { ++frames; }
  void setIsMouseDownActive(bool /*active*/) override {}
  void triggerRelocationTimerWithOffset(float /*offset*/) override {}
  void findFirstPosterImagePosWithClipCount(int /*count*/) override {}

  std::atomic<int> frames = 0;

 private:
  ZQACBindingAreaView& area_;
};

class TimelineThreadsTest : public QtTest {
 protected:
  TimelineThreadsTest() {
    timeline_.resize(218, 46);
    area_.resize(218, 40);
    timeline_.setThumbnailView(&strip_);
  }

  /// As the recapture controller does at each frame.
  void deliverFrame(int frame) {
    const auto sequence = static_cast<std::size_t>(frame / 50 % 2);
    const auto clip = static_cast<std::size_t>(frame / 10 % 2);
    timeline_.setCurrentSequence(tape_->sequenceAtIndex(sequence));
    timeline_.setCurrentClip(clipAt(tape_, sequence, clip));
    timeline_.setCursorTimecode(palTimecode(frame % 100));
    timeline_.setCursorDate(dateAfter(frame % 3));
    if (frame % 100 == 0) timeline_.setCursorRect({});
    if (frame % 100 == 0) timeline_.refreshWithTape(frame % 200 == 0 ? tape_ : otherTape_);
    timeline_.setIsMouseDownActive(frame % 7 != 0);
    timeline_.refresh();
    static_cast<void>(timeline_.cursorRect());
    static_cast<void>(timeline_.currentClip());
  }

  /// Draws, resizes and clicks until the other thread is done.
  void useUntil(const std::atomic<bool>& done) {
    for (int i = 0; !done; ++i) {
      timeline_.resize(218 + i % 5, 46);
      pictureOf(timeline_);
      pictureOf(area_);
      timeline_.findClipAndSequenceForPoint({static_cast<float>(i % 218), 23});
      timeline_.myMethodeWhenClipClicked();
      if (i % 10 == 0) timeline_.setThumbnailView(i % 20 == 10 ? nullptr : &strip_);
      runPosted(runtime_);
    }
  }

  backend::RealRuntime runtime_;
  ZQACTimelineView timeline_{runtime_};
  ZQACBindingAreaView area_{runtime_};
  PassingStrip strip_{area_};
  const TapeValue tape_ = makeTimelineTape({{{.frames = 50}, {.frames = 50}}, {{.frames = 50}, {.frames = 50}}});
  const TapeValue otherTape_ = makeTimelineTape({{{.frames = 70}}});
};

TEST_F(TimelineThreadsTest, FramesComeWhileTheMainThreadDraws) {
  std::atomic<bool> done = false;
  const auto delivery = runtime_.startThread("delivery", [&] {
    for (int frame = 0; frame < kFrames; ++frame) deliverFrame(frame);
    done = true;
  });
  useUntil(done);
  delivery->join();
  runPosted(runtime_);

  timeline_.setThumbnailView(&strip_);
  const int frames = strip_.frames;
  deliverFrame(kFrames - 1);
  EXPECT_EQ(strip_.frames, frames + 1);
  EXPECT_EQ(timeline_.cursorTimecode(), palTimecode((kFrames - 1) % 100));
}

TEST_F(TimelineThreadsTest, WhatWasPostedMayOutliveTheViews) {
  for (int i = 0; i < 20; ++i) {
    auto timeline = std::make_unique<ZQACTimelineView>(runtime_);
    runtime_.startThread("delivery", [&] { timeline->setCurrentClip(clipAt(tape_, 0, 0)); })->join();
    timeline.reset();
  }
  runPosted(runtime_);
}

}  // namespace
}  // namespace zq::test
