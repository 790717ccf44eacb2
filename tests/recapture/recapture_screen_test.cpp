// The outlets of the controller, spoken to while they come and go.

#include "recapture/recapture_screen.h"

#include <gmock/gmock.h>

#include <memory>

#include "backends/time/virtual_runtime.h"
#include "support/recapture_recorders.h"

namespace zq::test {
namespace {

using testing::ElementsAre;

class RecaptureScreenTest : public testing::Test {
 protected:
  RecaptureScreenTest() {
    outlets_.timelineView = &timeline_;
    screen_ = std::make_unique<RecaptureScreen>(runtime_, outlets_);
  }

  void runPosted() {
    runtime_.mainLoop().post([this] { runtime_.mainLoop().quit(); });
    runtime_.mainLoop().run();
  }

  backend::VirtualRuntime runtime_;
  CaptureJournal journal_;
  RecordingTimeline timeline_{journal_};
  RecaptureOutlets outlets_;
  std::unique_ptr<RecaptureScreen> screen_;
};

TEST_F(RecaptureScreenTest, AClipsPictureComesIntoViewWhenTheMainThreadIsFree) {
  screen_->showClip(nullptr);
  EXPECT_THAT(journal_.lines(), ElementsAre("timeline: no clip"));
  runPosted();
  EXPECT_THAT(journal_.lines(), ElementsAre("timeline: no clip", "timeline: clicked"));
}

// The window may close, and take its views along, before the main thread gets to what a frame has posted.
TEST_F(RecaptureScreenTest, TheTimelineIsLeftAloneOnceTheScreenIsGone) {
  screen_->showClip(nullptr);
  screen_.reset();
  runPosted();
  EXPECT_THAT(journal_.lines(), ElementsAre("timeline: no clip"));
}

}  // namespace
}  // namespace zq::test
