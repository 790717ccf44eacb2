// What a controller sets up, and what is left when it goes.

#include <gmock/gmock.h>

#include "support/capture_fixture.h"

namespace zq::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

class ControllerLife : public CaptureTest {
 protected:
  /// A platform that made nothing yet, for a controller of which the journal tells everything.
  void makeAnother() {
    controller_.reset();
    platform_.parts = {};
    journal_.clear();
    makeController();
  }
};

TEST_F(ControllerLife, BeginsWithAHiddenOverlayOnTheView) {
  makeAnother();
  EXPECT_THAT(journal_.lines(), ElementsAre("overlay: hide", "view: add overlay", "view: session"));
}

TEST_F(ControllerLife, AddsItsOutputsInOrder) {
  makeAnother();
  const FakeCaptureParts& parts = platform_.parts;
  ASSERT_EQ(parts.fileOutputs.size(), 2U);
  EXPECT_THAT(parts.outputs,
              ElementsAre(parts.videoPreview, parts.audioPreview, parts.fileOutputs[0], parts.fileOutputs[1]));
  EXPECT_EQ(&controller_->fileOutput(), parts.fileOutputs[0].get());
  EXPECT_EQ(&controller_->movieFileOutput(), parts.fileOutputs[1].get());
  EXPECT_EQ(&controller_->audioPreviewOutput(), parts.audioPreview.get());
}

TEST_F(ControllerLife, IsTheDelegateOfBothFileOutputs) {
  EXPECT_EQ(fileOutput().delegate, controller_.get());
  EXPECT_EQ(movieFileOutput().delegate, controller_.get());
}

TEST_F(ControllerLife, DoesNotRunTheSessionWithoutAnInput) {
  makeAnother();
  EXPECT_FALSE(platform_.parts.running);
  EXPECT_THAT(linesOf({"session"}), IsEmpty());
}

TEST_F(ControllerLife, RunsASessionThatHasAnInput) {
  controller_.reset();
  platform_.parts = {};
  platform_.parts.inputs.push_back(std::make_shared<FakeDeviceInput>(std::make_shared<FakeCaptureDevice>(journal_)));
  makeController();
  EXPECT_TRUE(platform_.parts.running);
}

TEST_F(ControllerLife, BeginsIdle) {
  EXPECT_FALSE(controller_->isRecording());
  EXPECT_FALSE(controller_->isPrerolling());
  EXPECT_EQ(controller_->startTimecode(), nullTimecode);
  EXPECT_EQ(controller_->currentTimecodeValue(), nullptr);
  EXPECT_EQ(controller_->currentDate(), nullptr);
  EXPECT_EQ(controller_->timecodeStartValue(), nullptr);
  EXPECT_EQ(controller_->timecodeEndValue(), nullptr);
  EXPECT_EQ(controller_->moviePath(), std::nullopt);
  EXPECT_EQ(controller_->thumbnailsPath(), std::nullopt);
  EXPECT_EQ(controller_->processNote(), "");
  EXPECT_FALSE(controller_->isCompressed());
}

TEST_F(ControllerLife, WakingFromItsInterfaceFileDoesNothing) {
  controller_->awakeFromNib();
  EXPECT_THAT(journal_.lines(), IsEmpty());
}

TEST_F(ControllerLife, EndsWithTheOverlayTakenOffAndTheDelegatesCleared) {
  controller_.reset();
  EXPECT_THAT(linesOf({"view"}), ElementsAre("view: remove overlay", "view: no session"));
  EXPECT_EQ(fileOutput().delegate, nullptr);
  EXPECT_EQ(movieFileOutput().delegate, nullptr);
}

// Closed while its delivery is under way, a device would deliver to a session that is gone.
TEST_F(ControllerLife, EndsWithTheDeviceQuietAndThenClosed) {
  const auto device = selectDevice(platform::AVCTransportControls{1, 10000});
  controller_.reset();
  EXPECT_THAT(linesOf({"session", "device"}),
              ElementsAre("session: stop", "device: wait for delivery", "session: remove input", "device: close"));
  EXPECT_FALSE(device->isOpen());
}

TEST_F(ControllerLife, EndsWithItsFilesClosedAndComplete) {
  startRecording();
  play(1, 100, 0);
  play(2, 101, 0);
  controller_.reset();
  EXPECT_THAT(thumbnailsOf(2), ElementsAre(1U, 2U));
  EXPECT_EQ(movieFileOutput().path, std::nullopt);
}

TEST_F(ControllerLife, EndingInMidRecordingTellsTheDelegateNothing) {
  startRecording();
  play(1, 100, 0);
  journal_.clear();
  controller_.reset();
  EXPECT_THAT(delegateCalls(), IsEmpty());
}

TEST_F(ControllerLife, AnotherOneFollowsOnTheSameServices) {
  startRecording();
  play(1, 100, 0);
  makeAnother();
  startRecording();
  EXPECT_TRUE(controller_->isRecording());
  stopRecording();
}

}  // namespace
}  // namespace zq::test
