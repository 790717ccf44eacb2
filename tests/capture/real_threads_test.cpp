// Real threads: frames are delivered on one while the main thread switches, asks and commands. What is asserted holds
// in every order; the thread sanitizer sees the rest.

#include <gmock/gmock.h>

#include <atomic>

#include "backends/session/session_platform.h"
#include "backends/settings/memory_settings.h"
#include "backends/time/real_runtime.h"
#include "capture/settings_keys.h"
#include "outlets/plain_outlets.h"
#include "support/capture_movies.h"
#include "support/capture_push_device.h"
#include "support/capture_recorders.h"
#include "support/capture_tape.h"
#include "support/compression_fakes.h"
#include "support/scratch_folder.h"

namespace zq::test {
namespace {

using testing::SizeIs;

class RealThreads : public testing::Test {
 protected:
  RealThreads() {
    ZQACController::initialize(settings_);
    // Neither rewinds for two seconds nor leaves the tape paused.
    settings_.setIntegerForKey(ZQACActionAfterRecord, 0);
    CaptureOutlets outlets;
    outlets.timecodeView = &overlay_;
    controller_ = std::make_unique<ZQACController>(
        CaptureServices{runtime_, platform_, compression_, settings_, notifications_, alerts_, strings_, log_},
        outlets);
    controller_->setDelegate(&delegate_.operations);
    controller_->setSelectedVideoDevice(device_);
  }

  /// Scenes of 20 frames, each with timecodes from zero.
  static std::vector<SharedBytes> manyScenes(int scenes) {
    TapeRecipe tape{};
    for (int i = 0; i < scenes; ++i) tape.add({20, 100 * i, 0});
    std::vector<SharedBytes> frames;
    for (const FrameBytes& frame : tape.frames()) frames.push_back(SharedBytes::copyOf(frame));
    return frames;
  }

  /// Pushes all frames from a second thread. Every `each` frames the main thread does `act`, and the last act has been
  /// done when this returns.
  void pushWhile(const std::vector<SharedBytes>& frames, std::size_t each, const std::function<void()>& act) {
    const auto pusher = runtime_.startThread("delivery", [&] {
      for (std::size_t i = 0; i < frames.size(); ++i) {
        device_->push(frames[i]);
        if (i % each == 0) runtime_.mainLoop().post(act);
      }
      runtime_.mainLoop().post([this] { runtime_.mainLoop().quit(); });
    });
    runtime_.mainLoop().run();
  }

  /// Ends the controller and completes its files.
  void finish() {
    controller_.reset();
    platform_.finishFiles();
  }

  void expectDelegateCallsInOrder() const {
    bool recording = false;
    int open = 0;
    for (const std::string& line : journal_.linesOf({"delegate"})) {
      if (line == "delegate: begin") {
        EXPECT_FALSE(recording);
        recording = true;
      } else if (line == "delegate: will") {
        EXPECT_TRUE(recording);
        EXPECT_EQ(open++, 0);
      } else if (line == "delegate: end") {
        EXPECT_TRUE(recording);
        EXPECT_EQ(open, 0);
        recording = false;
      } else {
        EXPECT_EQ(--open, 0) << line;
      }
    }
    EXPECT_FALSE(recording);
  }

  /// Each tape frame is in one movie at most, and a movie's frames follow each other on the tape.
  void expectMoviesOfConsecutiveFrames() const {
    std::set<std::uint32_t> seen;
    for (const auto& [path, frames] : movies_.movies()) {
      EXPECT_TRUE(movies_.isFinished(path)) << path;
      std::optional<std::uint32_t> previous;
      for (const SharedBytes& frame : frames) {
        const std::uint32_t id = frameIdOf(frame.bytes());
        EXPECT_TRUE(seen.insert(id).second) << id;
        if (previous) {
          EXPECT_EQ(id, *previous + 1) << path;
        }
        previous = id;
      }
    }
  }

  ScratchFolder scratch_;
  CaptureJournal journal_;
  CaptureLog log_;
  RecordingAlerts alerts_{journal_};
  FakeStrings strings_;
  MemoryMovies movies_;
  platform::NotificationCenter notifications_;
  backend::RealRuntime runtime_;
  backend::MemorySettings settings_{runtime_};
  outlets::PlainOverlay overlay_{runtime_};
  RecordingDelegate delegate_{journal_, scratch_.path()};
  backend::SessionPlatform platform_{runtime_, movies_, log_, {}};
  FakeCompression compression_;
  std::shared_ptr<PushDevice> device_ = std::make_shared<PushDevice>(runtime_);
  std::unique_ptr<ZQACController> controller_;
};

TEST_F(RealThreads, EveryFrameOfARecordingIsInTheMovieOfItsScene) {
  controller_->setRecording(true);
  pushWhile(manyScenes(10), 1000, [] {});
  controller_->setRecording(false);
  finish();
  expectDelegateCallsInOrder();
  for (int scene = 0; scene < 10; ++scene) {
    EXPECT_THAT(movies_.movies().at(delegate_.moviePath(2 + scene)), SizeIs(20));
  }
}

TEST_F(RealThreads, TheRecordingIsSwitchedWhileFramesArrive) {
  settings_.setBoolForKey(ZQACDetectEndTape, true);
  settings_.setIntegerForKey(ZQACDetectEndTapeSecond, 3600);
  bool recording = false;
  pushWhile(manyScenes(25), 7, [&] { controller_->setRecording(recording = !recording); });
  controller_->setRecording(false);
  finish();
  expectDelegateCallsInOrder();
  expectMoviesOfConsecutiveFrames();
}

TEST_F(RealThreads, FramesAreLeftOutAndSettingsChangeWhileFramesArrive) {
  controller_->setRecording(true);
  int turn = 0;
  pushWhile(manyScenes(25), 5, [&] {
    ++turn;
    settings_.setIntegerForKey(ZQACNbDropFrame, turn % 3);
    settings_.setBoolForKey(ZQACCaptureMovie, turn % 4 != 0);
    settings_.setIntegerForKey(ZQACSampleInterval, turn % 5);
    settings_.setBoolForKey(ZQACFrameSampling, turn % 2 != 0);
  });
  controller_->setRecording(false);
  finish();
  expectMoviesOfConsecutiveFrames();
}

TEST_F(RealThreads, TheMainThreadAsksAndCommandsWhileFramesArrive) {
  controller_->setRecording(true);
  pushWhile(manyScenes(15), 3, [&] {
    controller_->isDevicePlaying();
    controller_->isDeviceFastForwarding();
    controller_->setDevicePlaying(true);
    controller_->setCaptureVolume(controller_->captureVolume());
    const ClipInfo info = controller_->currentClipInfo();
    const TimecodeValue timecode = controller_->currentTimecodeValue();
    EXPECT_TRUE(timecode == nullptr || timecode->mHours == 0);
    EXPECT_EQ(overlay_.timecode().mHours, 0);
    controller_->launchStopCaptureTimer();
  });
  EXPECT_TRUE(controller_->isRecording());
  controller_->setRecording(false);
  finish();
  expectDelegateCallsInOrder();
  expectMoviesOfConsecutiveFrames();
}

TEST_F(RealThreads, AFrameThatIsNotDVEndsTheRecordingFromTheDeliveryThread) {
  settings_.setBoolForKey(ZQACDetectEndTape, true);
  settings_.setIntegerForKey(ZQACDetectEndTapeSecond, 3600);
  auto frames = manyScenes(5);
  frames[50] = SharedBytes::copyOf(FrameBytes(119999));
  controller_->setRecording(true);
  pushWhile(frames, 1000, [] {});
  EXPECT_FALSE(controller_->isRecording());
  finish();
  expectDelegateCallsInOrder();
  EXPECT_THAT(alerts_.shown, SizeIs(1));
  EXPECT_THAT(movies_.movies().at(delegate_.moviePath(4)), SizeIs(10));
}

TEST_F(RealThreads, TheControllerGoesWhileFramesArrive) {
  settings_.setBoolForKey(ZQACDetectEndTape, true);
  settings_.setIntegerForKey(ZQACDetectEndTapeSecond, 3600);
  const auto frames = manyScenes(3);
  std::atomic<bool> gone = false;
  controller_->setRecording(true);
  const auto pusher = runtime_.startThread("delivery", [&] {
    for (std::size_t i = 0; !gone; ++i) {
      device_->push(frames[i % frames.size()]);
      if (i == 30) runtime_.mainLoop().post([this] { runtime_.mainLoop().quit(); });
    }
  });
  runtime_.mainLoop().run();
  finish();
  gone = true;
  pusher->join();
}

}  // namespace
}  // namespace zq::test
