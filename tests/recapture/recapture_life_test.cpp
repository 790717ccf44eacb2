// The controller before and after its sessions: made, laid out, opened, given a tape, closed and gone.

#include <gmock/gmock.h>

#include "support/recapture_fixture.h"

namespace zq::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class RecaptureLife : public RecaptureTest {};

TEST_F(RecaptureLife, BeginsIdleInAutomaticMode) {
  EXPECT_FALSE(controller_->isStart());
  EXPECT_FALSE(controller_->isRecording());
  EXPECT_FALSE(controller_->isPrerolling());
  EXPECT_FALSE(controller_->isRecaptureDone());
  EXPECT_EQ(controller_->recaptureModeTag(), 0);
  EXPECT_EQ(controller_->currentTape(), nullptr);
  EXPECT_EQ(controller_->sequenceFound(), nullptr);
  EXPECT_EQ(controller_->currentClip(), nullptr);
  EXPECT_EQ(controller_->clipToBeRecaptured(), nullptr);
  EXPECT_EQ(controller_->currentDateOnClip(), nullptr);
  EXPECT_EQ(controller_->currentTimecode(), nullTimecode);
  EXPECT_EQ(controller_->startTimecode(), nullTimecode);
  EXPECT_EQ(controller_->endTimecode(), nullTimecode);
  EXPECT_EQ(controller_->moviePath(), std::nullopt);
  EXPECT_EQ(controller_->processNote(), "");
  EXPECT_EQ(controller_->totalCountOfClipsToBeRecaptured(), 0);
  EXPECT_EQ(controller_->totalCountOfClipsToBeRecapturedInSequence(), 0);
}

TEST_F(RecaptureLife, ConnectsTheViewsAndAddsFourOutputs) {
  controller_.reset();
  platform_.parts.outputs.clear();
  platform_.parts.fileOutputs.clear();
  journal_.clear();
  makeController();
  EXPECT_THAT(journal_.lines(), ElementsAre("timeline: strip", "strip: binding area", "view: session"));
  EXPECT_THAT(platform_.parts.outputs, ElementsAre(platform_.parts.videoPreview, platform_.parts.fileOutputs.at(0),
                                                   platform_.parts.fileOutputs.at(1), platform_.parts.audioPreview));
  EXPECT_EQ(&controller_->movieFileOutput(), platform_.parts.fileOutputs.at(0).get());
  EXPECT_EQ(controller_->audioPreviewOutput().volume(), 0.0F);
  EXPECT_EQ(movieFileOutput().delegate, controller_.get());
  EXPECT_EQ(movieFileOutputAlter().delegate, controller_.get());
}

TEST_F(RecaptureLife, LaysOutTheOverlaysHidden) {
  message_.setShown(true);
  journal_.clear();
  controller_->awakeFromNib();
  EXPECT_THAT(journal_.lines(), ElementsAre("note: background", "overlay: hide", "view: add overlay", "view: add panel",
                                            "message: hide"));
  EXPECT_EQ(messageText_.background, (platform::Color{0.306F, 0.38F, 0.467F, 0.5F}));
}

TEST_F(RecaptureLife, TakesTheOverlaysOutWhenItGoes) {
  controller_.reset();
  EXPECT_THAT(linesOf({"view"}), ElementsAre("view: remove overlay", "view: remove panel", "view: no session"));
  EXPECT_EQ(movieFileOutput().delegate, nullptr);
  EXPECT_EQ(movieFileOutputAlter().delegate, nullptr);
}

TEST_F(RecaptureLife, EndsTheFileAndReleasesTheDeviceWhenItGoes) {
  const auto device = selectDevice(kStopped);
  movieFileOutput().path = "/movies/1.mov";
  controller_.reset();
  EXPECT_EQ(movieFileOutput().path, std::nullopt);
  EXPECT_FALSE(device->isOpen());
  EXPECT_THAT(platform_.parts.inputs, IsEmpty());
  EXPECT_FALSE(platform_.parts.running);
}

TEST_F(RecaptureLife, OpensWithTheOverlayShown) {
  controller_->setIsRecaptureDone(true);
  journal_.clear();
  controller_->openRecapture();
  EXPECT_FALSE(controller_->isRecaptureDone());
  EXPECT_THAT(journal_.lines(), ElementsAre("overlay: show"));
}

TEST_F(RecaptureLife, LoadsATape) {
  const TapeValue tape = makeTape({{{}, {}}, {{}}});
  controller_->loadATape(tape);
  EXPECT_THAT(journal_.lines(),
              ElementsAre("timeline: no cursor", "timeline: refresh", "timeline: Holiday", "strip: sequence 1"));
  EXPECT_EQ(controller_->currentTape(), tape);
  EXPECT_EQ(controller_->totalCountOfClipsToBeRecaptured(), 3);
  EXPECT_EQ(tape->clipCount(), 3);
  EXPECT_TRUE(clipOf(tape, 1, 0)->isLastClip());
}

// Searching a tape again would list its clips twice.
TEST_F(RecaptureLife, SearchesATapeOnceHoweverOftenItIsLoaded) {
  const TapeValue tape = load({{{}}});
  controller_->loadATape(tape);
  EXPECT_THAT(journal_.lines(), ElementsAre("timeline: no cursor", "timeline: refresh"));
  EXPECT_THAT(tape->clipsToBeRecaptured(), SizeIs(1));
}

TEST_F(RecaptureLife, LoadsATapeWithoutSequences) {
  load({});
  controller_->setCurrentTape(makeTape({}));
  EXPECT_THAT(journal_.lines(), ElementsAre("timeline: Holiday", "strip: no sequence"));
  EXPECT_EQ(controller_->totalCountOfClipsToBeRecaptured(), 0);
}

TEST_F(RecaptureLife, ClosesWithoutTapeClipAndDevice) {
  const auto device = selectDevice(kStopped);
  const TapeValue tape = load({{{}}});
  controller_->setCurrentClip(clipOf(tape, 0, 0));
  controller_->closeRecapture();
  EXPECT_THAT(linesOf({"strip", "overlay", "timeline", "device", "session"}),
              ElementsAre("strip: no sequence", "strip: no clip", "overlay: hide", "timeline: no tape",
                          "strip: no sequence", "session: remove input", "device: close", "session: stop"));
  EXPECT_EQ(controller_->currentTape(), nullptr);
  EXPECT_EQ(controller_->currentClip(), nullptr);
  EXPECT_EQ(controller_->selectedVideoDevice(), nullptr);
  EXPECT_EQ(controller_->totalCountOfClipsToBeRecaptured(), 0);
}

TEST_F(RecaptureLife, ShowsTimecodeAlwaysAndADateThatIsNotTheSameObject) {
  const DateValue date = dateValueAt(3);
  controller_->setCurrentTimecode(timecodeAtFrame(DVSystem::pal625_50, 5));
  controller_->setCurrentTimecode(timecodeAtFrame(DVSystem::pal625_50, 5));
  controller_->setCurrentDateOnClip(date);
  controller_->setCurrentDateOnClip(date);
  EXPECT_THAT(journal_.lines(),
              ElementsAre("overlay: 00:00:00:05", "overlay: 00:00:00:05", "overlay: 2004-07-15T13:00:03"));
}

TEST_F(RecaptureLife, ShowsItsNoteInTheMessage) {
  controller_->setProcessNote("one");
  controller_->setProcessNote("one");
  controller_->setProcessNote("two");
  EXPECT_THAT(journal_.lines(), ElementsAre("note: one", "note: two"));
}

TEST_F(RecaptureLife, StopsTheTapeWhenARecaptureIsDone) {
  selectDevice(kPlaying);
  controller_->setIsRecaptureDone(true);
  EXPECT_THAT(deviceCommands(), ElementsAre("device: mode 0 speed 0"));
  journal_.clear();
  controller_->setIsRecaptureDone(false);
  EXPECT_THAT(deviceCommands(), IsEmpty());
}

TEST_F(RecaptureLife, DoesWithoutAnyOutletAndDelegate) {
  outlets_ = {};
  makeController();
  controller_->setDelegate(nullptr);
  controller_->awakeFromNib();
  controller_->openRecapture();
  selectDevice(kPlaying);
  const TapeValue tape = load({{{0, 1000}}});
  controller_->startRecapture();
  platform_.parts.fileOutputs.front() = platform_.parts.fileOutputs.at(2);
  playTimes(300, 1000, 0);
  letPass(std::chrono::seconds(10));
  EXPECT_TRUE(controller_->isRecording());
  controller_->startRecapture();
  controller_->closeRecapture();
  controller_.reset();
  EXPECT_FALSE(platform_.parts.running);
}

}  // namespace
}  // namespace zq::test
