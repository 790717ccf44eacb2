// Setting a recording up: on a thread of its own the tape goes back for four seconds and plays.

#include <gmock/gmock.h>

#include "support/recapture_fixture.h"

namespace zq::test {
namespace {

using namespace std::chrono_literals;
using platform::AVCTransportControls;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

SMPTETime timecode(int frame) {
  return timecodeAtFrame(DVSystem::pal625_50, frame);
}

/// A clip from 00:03:20:00 to 00:03:29:24, recorded from second 120 on; settled in it.
class RecapturePreroll : public RecaptureTest {
 protected:
  RecapturePreroll() {
    device_ = selectDevice(kPlaying);
    tape_ = load({{{120, 5000}}});
    controller_->startRecapture();
    settleAt(5000, 120);
    letPass(0s);
    device_->controls = kPlaying;
  }
  /// At the frame that requests the recording.
  void request() {
    play(5000, 120);
    journal_.clear();
  }

  std::shared_ptr<FakeCaptureDevice> device_;
  TapeValue tape_;
};

TEST_F(RecapturePreroll, GoesBackForFourSecondsPlaysAndRestartsTheSession) {
  request();
  std::vector<double> times;
  device_->beforeObeying = [&](const AVCTransportControls&) { times.push_back(secondsNow()); };
  letPass(10s);
  EXPECT_THAT(journal_.lines(),
              ElementsAre("overlay: hide", "device: mode 1 speed -10000", "device: mode 1 speed 10000",
                          "session: start", "session: stop", "session: start"));
  EXPECT_THAT(times, ElementsAre(0, 4));
}

TEST_F(RecapturePreroll, RestartsTheSessionOnTheMainThreadASecondLater) {
  request();
  letPass(4500ms);  // the main thread is back from the restart after 5 s
  EXPECT_EQ(secondsNow(), 5);
  EXPECT_THAT(linesOf({"session"}), ElementsAre("session: start", "session: stop", "session: start"));
}

TEST_F(RecapturePreroll, HappensBesideTheFrames) {
  request();
  EXPECT_EQ(secondsNow(), 0);
  EXPECT_FALSE(controller_->isPrerolling());
  letPass(2s);
  EXPECT_TRUE(controller_->isPrerolling());
  EXPECT_FALSE(controller_->isRecording());
  EXPECT_EQ(controller_->startTimecode(), nullTimecode);
  EXPECT_EQ(controller_->endTimecode(), nullTimecode);
}

TEST_F(RecapturePreroll, ArmsTheTimecodesOfTheClip) {
  request();
  letPass(10s);
  EXPECT_FALSE(controller_->isPrerolling());
  EXPECT_TRUE(controller_->isRecording());
  EXPECT_EQ(controller_->startTimecode(), timecode(5000));
  EXPECT_EQ(controller_->endTimecode(), timecode(5249));
}

TEST_F(RecapturePreroll, DropsTheFramesThatPassMeanwhile) {
  request();
  letPass(2s);
  journal_.clear();
  play(4990, 119);
  play(5100, 124);
  EXPECT_THAT(journal_.lines(), IsEmpty());
  EXPECT_EQ(controller_->currentTimecode(), timecode(5000));
  letPass(8s);
  play(4990, 119);
  EXPECT_EQ(note(), "Recapturing");
}

// It is asked for on every frame at the start, and made once.
TEST_F(RecapturePreroll, RequestedTwiceBeforeItBeginsIsMadeOnce) {
  request();
  play(5000, 120);
  journal_.clear();
  letPass(20s);
  EXPECT_THAT(deviceCommands(), ElementsAre("device: mode 1 speed -10000", "device: mode 1 speed 10000"));
  EXPECT_EQ(controller_->startTimecode(), timecode(5000));
}

// The thread has taken the request and waits for the frame under way, and that one's successor asks once more.
TEST_F(RecapturePreroll, RequestedTwiceWhileItBeginsIsMadeOnce) {
  request();
  delegate_.operations.acRecaptureControllerDidStartRecapture = [this] {
    runtime_.clock().sleepFor(1s);
    play(5000, 120);
    journal_.clear();
  };
  controller_->setIsStart(true);
  letPass(20s);
  EXPECT_THAT(deviceCommands(), ElementsAre("device: mode 1 speed -10000", "device: mode 1 speed 10000"));
  EXPECT_EQ(controller_->startTimecode(), timecode(5000));
}

TEST_F(RecapturePreroll, WithoutATransportIsAtOnce) {
  device_->readOnly = true;
  request();
  letPass(1ms);
  EXPECT_THAT(deviceCommands(), IsEmpty());
  EXPECT_TRUE(controller_->isRecording());
  EXPECT_EQ(controller_->startTimecode(), timecode(5000));
  EXPECT_EQ(secondsNow(), 1);  // the session restarts all the same
}

TEST_F(RecapturePreroll, IsNotMadeWithoutASession) {
  makeController();
  const auto device = selectDevice(kPlaying);
  controller_->setCurrentTape(makeTape({{{120, 5000}}}));
  settleAt(5000, 120);
  play(5000, 120);
  letPass(10s);
  EXPECT_EQ(note(), "Clip found, camera will start recapture");
  EXPECT_FALSE(controller_->isRecording());
}

TEST_F(RecapturePreroll, OfAControllerThatGoesIsWaitedForAndDoesNotRestartTheSession) {
  request();
  letPass(2s);
  controller_.reset();
  EXPECT_EQ(secondsNow(), 4);
  EXPECT_FALSE(platform_.parts.running);
  journal_.clear();
  letPass(10s);
  EXPECT_THAT(journal_.lines(), IsEmpty());
}

TEST_F(RecapturePreroll, RequestedButNotBegunDoesNotHoldUpAControllerThatGoes) {
  request();
  controller_.reset();
  EXPECT_EQ(secondsNow(), 0);
  EXPECT_THAT(linesOf({"device"}), ElementsAre("device: wait for delivery", "device: close"));
}

// A running switch that is set again disarms what was armed.
TEST_F(RecapturePreroll, SwitchingOnWhatIsOnOnlyDisarms) {
  controller_->setRecording(true);
  letPass(2s);
  journal_.clear();
  controller_->setRecording(true);
  EXPECT_THAT(journal_.lines(), ElementsAre("overlay: show"));
  EXPECT_EQ(controller_->startTimecode(), nullTimecode);
  EXPECT_EQ(controller_->endTimecode(), nullTimecode);
  EXPECT_TRUE(controller_->isRecording());
}

TEST_F(RecapturePreroll, SwitchingOffForgetsTheMovie) {
  controller_->setRecording(true);
  controller_->setMoviePath("/movies/1.mov");
  journal_.clear();
  controller_->setRecording(false);
  EXPECT_THAT(journal_.lines(), ElementsAre("overlay: show"));
  EXPECT_FALSE(controller_->isRecording());
  EXPECT_EQ(controller_->moviePath(), std::nullopt);
  EXPECT_EQ(controller_->startTimecode(), nullTimecode);
  EXPECT_EQ(controller_->endTimecode(), nullTimecode);
}

TEST_F(RecapturePreroll, SwitchingOffWhatIsOffKeepsTheMovieAndDisarms) {
  controller_->setMoviePath("/movies/1.mov");
  controller_->setStartTimecode(timecode(1));
  controller_->setEndTimecode(timecode(2));
  journal_.clear();
  controller_->setRecording(false);
  EXPECT_THAT(journal_.lines(), ElementsAre("overlay: hide"));
  EXPECT_EQ(controller_->moviePath(), "/movies/1.mov");
  EXPECT_EQ(controller_->startTimecode(), nullTimecode);
  EXPECT_EQ(controller_->endTimecode(), nullTimecode);
}

TEST_F(RecapturePreroll, WithoutAClipArmsNothing) {
  controller_->setClipToBeRecaptured(nullptr);
  controller_->setRecording(true);
  EXPECT_TRUE(controller_->isRecording());
  EXPECT_EQ(controller_->startTimecode(), nullTimecode);
  EXPECT_EQ(controller_->endTimecode(), nullTimecode);
}

TEST_F(RecapturePreroll, OnlyTheFlagIsKeptWithoutATransport) {
  device_->readOnly = true;
  controller_->setIsPrerolling(true);
  EXPECT_TRUE(controller_->isPrerolling());
  EXPECT_EQ(secondsNow(), 0);
}

/// Counts the threads of a virtual runtime.
class ThreadCount final : public platform::Runtime {
 public:
  explicit ThreadCount(platform::Runtime& runtime) : runtime_(runtime) {}
  platform::Clock& clock() override { return runtime_.clock(); }
  platform::MainLoop& mainLoop() override { return runtime_.mainLoop(); }
  std::unique_ptr<platform::Mutex> makeMutex(const std::string& name) override { return runtime_.makeMutex(name); }
  std::unique_ptr<platform::Condition> makeCondition(const std::string& name) override {
    return runtime_.makeCondition(name);
  }
  std::unique_ptr<platform::Thread> startThread(const std::string& name, std::function<void()> run) override {
    names.push_back(name);
    return runtime_.startThread(name, std::move(run));
  }
  void runAside(const std::function<void()>& work) override { runtime_.runAside(work); }

  std::vector<std::string> names;

 private:
  platform::Runtime& runtime_;
};

// Threads of sessions that were cancelled wait as well; each request is one thread's.
TEST_F(RecapturePreroll, EveryStartBringsAThreadAndARequestIsMadeByOneOfThem) {
  ThreadCount counted(runtime_);
  controller_ = std::make_unique<ZQACRecaptureController>(
      RecaptureServices{counted, platform_, compression_, settings_, notifications_, alerts_, strings_, files_, log_},
      outlets_);
  device_ = selectDevice(kPlaying);
  controller_->setCurrentTape(makeTape({{{120, 5000}}}));
  for (int i = 0; i < 5; ++i) controller_->startRecapture();
  EXPECT_THAT(counted.names, SizeIs(3));
  letPass(1s);
  settleAt(5000, 120);
  device_->controls = kPlaying;
  request();
  letPass(20s);
  EXPECT_THAT(deviceCommands(), ElementsAre("device: mode 1 speed -10000", "device: mode 1 speed 10000"));
  EXPECT_EQ(controller_->startTimecode(), timecode(5000));
  controller_.reset();
}

TEST_F(RecapturePreroll, ARefusedStartBringsNoThread) {
  ThreadCount counted(runtime_);
  controller_ = std::make_unique<ZQACRecaptureController>(
      RecaptureServices{counted, platform_, compression_, settings_, notifications_, alerts_, strings_, files_, log_},
      outlets_);
  controller_->startRecapture();
  selectDevice(kPlaying);
  controller_->startRecapture();
  EXPECT_THAT(alerts_.shown, SizeIs(2));
  EXPECT_THAT(counted.names, IsEmpty());
  controller_.reset();
}

}  // namespace
}  // namespace zq::test
