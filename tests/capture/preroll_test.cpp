// Recording from a paused tape: it runs back for two seconds, so that it is at speed where the clip opens.

#include <gmock/gmock.h>

#include "support/capture_fixture.h"

namespace zq::test {
namespace {

using namespace std::chrono_literals;
using platform::AVCTransportControls;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr AVCTransportControls kPaused{1, 0};
constexpr int kTenMinutes = 10 * 60 * 25;

class Preroll : public CaptureTest {
 protected:
  /// At 00:10:00:00.
  std::shared_ptr<FakeCaptureDevice> selectPausedDevice() {
    auto device = selectDevice(kPaused);
    play(1, kTenMinutes, 0);
    journal_.clear();
    return device;
  }
};

TEST_F(Preroll, PlaysBackwardsForTwoSecondsThenForwards) {
  const auto device = selectPausedDevice();
  std::vector<std::pair<long, platform::TimePoint>> commands;
  device->beforeObeying = [&](const AVCTransportControls& command) {
    EXPECT_EQ(command.playbackMode, 1U);
    commands.emplace_back(command.speed, runtime_.clock().now());
  };
  startRecording();
  ASSERT_EQ(commands.size(), 2U);
  EXPECT_EQ(commands[0].first, -10000);
  EXPECT_EQ(commands[1].first, 10000);
  EXPECT_EQ(commands[1].second - commands[0].second, 2s);
}

TEST_F(Preroll, TellsOfTheRecordingFirstAndOfAClipNotYet) {
  selectPausedDevice();
  startRecording();
  EXPECT_THAT(linesOf({"delegate", "device"}),
              ElementsAre("delegate: begin", "device: mode 1 speed -10000", "device: mode 1 speed 10000"));
  EXPECT_EQ(controller_->processNote(), "Recording started");
}

TEST_F(Preroll, WaitsWithTheSwitchOffAndTheStartPointAtZero) {
  const auto device = selectPausedDevice();
  device->beforeObeying = [&](const AVCTransportControls& command) {
    EXPECT_TRUE(controller_->isPrerolling());
    EXPECT_EQ(controller_->isRecording(), command.speed > 0);
    EXPECT_EQ(controller_->startTimecode(),
              command.speed > 0 ? timecodeAtFrame(DVSystem::pal625_50, kTenMinutes) : nullTimecode);
  };
  startRecording();
  EXPECT_TRUE(controller_->isRecording());
  EXPECT_TRUE(controller_->isPrerolling());
}

TEST_F(Preroll, ForgetsTheStartPointOfARecordingBefore) {
  const auto device = selectPausedDevice();
  controller_->setStartTimecode(timecodeOf(5, 0, 0, 0, 1));
  device->beforeObeying = [&](const AVCTransportControls& command) {
    const bool runsBack = command.speed < 0;
    if (runsBack) {
      EXPECT_EQ(controller_->startTimecode(), nullTimecode);
    }
  };
  startRecording();
  EXPECT_EQ(controller_->startTimecode(), timecodeOf(0, 10, 0, 0, 1));
}

TEST_F(Preroll, TheClipStartsAtTheTapesTimecodeAndNotAtThatOfAFrameWithoutOne) {
  selectPausedDevice();
  settings_.setBoolForKey(ZQACDetectScene, false);
  startRecording();
  controller_->setStartTimecode(nullTimecode);
  play(4, std::nullopt, 0);
  EXPECT_FALSE(controller_->isPrerolling());
  ASSERT_NE(controller_->currentClipInfo().clipStartTimecode, nullptr);
  EXPECT_EQ(*controller_->currentClipInfo().clipStartTimecode, timecodeOf(0, 10, 0, 0, 1));
}

TEST_F(Preroll, FramesThatPassWhileTheTapeRunsBackAreNotRecorded) {
  selectPausedDevice();
  const auto backwards = runtime_.startThread("tape", [this] {
    runtime_.clock().sleepFor(1s);
    play(50, kTenMinutes - 20, 0);
  });
  startRecording();
  EXPECT_THAT(delegateCalls(), ElementsAre("delegate: begin"));
  EXPECT_EQ(*controller_->currentTimecodeValue(), timecodeOf(0, 9, 59, 5, 1));
  EXPECT_EQ(controller_->startTimecode(), timecodeOf(0, 10, 0, 0, 1));
}

TEST_F(Preroll, TheClipOpensOnTheFirstFrameThatIsThereAgain) {
  selectPausedDevice();
  settings_.setBoolForKey(ZQACDetectScene, false);
  startRecording();
  play(2, kTenMinutes - 2, 0);
  play(3, kTenMinutes - 1, 0);
  EXPECT_THAT(delegateCalls(), ElementsAre("delegate: begin"));
  play(4, kTenMinutes, 0);
  EXPECT_FALSE(controller_->isPrerolling());
  EXPECT_THAT(delegateCalls(), ElementsAre("delegate: begin", "delegate: will"));
  EXPECT_EQ(*controller_->currentClipInfo().clipStartTimecode, timecodeOf(0, 10, 0, 0, 1));
  play(5, kTenMinutes + 1, 0);
  stopRecording();
  EXPECT_THAT(thumbnailsOf(1), ElementsAre(4U, 5U));
  EXPECT_EQ(movieFileOutput().movies[delegate_.moviePath(1)].size(), 2U);
}

TEST_F(Preroll, TheClipOpensBehindThePointWhenTheFrameThereIsMissing) {
  selectPausedDevice();
  settings_.setBoolForKey(ZQACDetectScene, false);
  startRecording();
  play(4, kTenMinutes + 9, 0);
  EXPECT_EQ(*controller_->currentClipInfo().clipStartTimecode, timecodeOf(0, 10, 0, 9, 1));
}

// The first date of a recording is a jump here as well: the clip that the start point opens is closed on its first
// frame, which then begins the next one.
TEST_F(Preroll, WithSceneDetectionTheClipThatOpensIsClosedByItsFirstDate) {
  selectPausedDevice();
  startRecording();
  play(4, kTenMinutes, 0);
  EXPECT_THAT(delegateCalls(),
              ElementsAre("delegate: begin", "delegate: will", "delegate: did clip 1", "delegate: will"));
  EXPECT_EQ(*delegate_.infos.at(0).clipStartTimecode, timecodeOf(0, 10, 0, 0, 1));
  EXPECT_EQ(delegate_.infos.at(0).clipRecordingDate, nullptr);
  EXPECT_EQ(delegate_.infos.at(0).clipEndTimecode, nullptr);
  EXPECT_THAT(thumbnailsOf(1), ElementsAre(4U));
  EXPECT_THAT(thumbnailsOf(2), ElementsAre(4U));
}

TEST_F(Preroll, NeedsAKnownTimecode) {
  selectDevice(kPaused);
  startRecording();
  EXPECT_THAT(deviceCommands(), ElementsAre("device: mode 1 speed 10000"));
  EXPECT_FALSE(controller_->isPrerolling());
  EXPECT_THAT(delegateCalls(), ElementsAre("delegate: begin", "delegate: will"));
}

TEST_F(Preroll, NeedsADeviceThatCanBeControlled) {
  const auto device = selectPausedDevice();
  device->readOnly = true;
  startRecording();
  EXPECT_THAT(deviceCommands(), IsEmpty());
  EXPECT_THAT(delegateCalls(), ElementsAre("delegate: begin", "delegate: will"));
}

TEST_F(Preroll, IsNotDoneOnATapeThatPlaysStandsOrWinds) {
  for (const AVCTransportControls controls :
       {AVCTransportControls{1, 10000}, AVCTransportControls{0, 0}, AVCTransportControls{0, 13000}}) {
    const auto device = selectDevice(controls);
    play(1, kTenMinutes, 0);
    startRecording();
    EXPECT_THAT(deviceCommands(), ElementsAre("device: mode 1 speed 10000"));
    EXPECT_FALSE(controller_->isPrerolling());
    stopRecording();
  }
}

TEST_F(Preroll, WithoutADelegateTheWaitingEndsAtThePointAndNothingOpens) {
  selectPausedDevice();
  controller_->setDelegate(nullptr);
  startRecording();
  play(4, kTenMinutes, std::nullopt);
  EXPECT_FALSE(controller_->isPrerolling());
  EXPECT_EQ(controller_->thumbnailsPath(), std::nullopt);
}

TEST_F(Preroll, StoppingWhileItWaitsEndsIt) {
  selectPausedDevice();
  startRecording();
  play(2, kTenMinutes - 10, 0);
  stopRecording();
  EXPECT_FALSE(controller_->isPrerolling());
  EXPECT_FALSE(controller_->isRecording());
  play(3, kTenMinutes, 0);
  EXPECT_EQ(delegate_.clips, 0);
}

TEST_F(Preroll, OfAFrameWithoutATimecodeWaitsOn) {
  selectPausedDevice();
  startRecording();
  play(2, std::nullopt, 0);
  EXPECT_TRUE(controller_->isPrerolling());
}

}  // namespace
}  // namespace zq::test
