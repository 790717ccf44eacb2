// Real threads: frames are delivered on one, recordings are set up on another, while the main thread starts, cancels,
// asks and destroys. What is asserted holds in every order; the thread sanitizer sees the rest.

#include <gmock/gmock.h>

#include <atomic>

#include "backends/session/session_platform.h"
#include "backends/settings/memory_settings.h"
#include "backends/time/real_runtime.h"
#include "outlets/plain_outlets.h"
#include "recapture/controller.h"
#include "support/capture_movies.h"
#include "support/capture_push_device.h"
#include "support/capture_recorders.h"
#include "support/compression_fakes.h"
#include "support/recapture_recorders.h"
#include "support/recapture_tape.h"

namespace zq::test {
namespace {

/// Real threads, whose sleeps are a thousand times shorter.
class HurriedRuntime final : public platform::Runtime, public platform::Clock {
 public:
  platform::Clock& clock() override { return *this; }
  platform::TimePoint now() const override { return const_cast<backend::RealRuntime&>(real_).clock().now(); }
  void sleepFor(platform::Duration duration) override {
    if (onSleep) onSleep(duration);
    real_.clock().sleepFor(duration / 1000);
  }
  platform::MainLoop& mainLoop() override { return real_.mainLoop(); }
  std::unique_ptr<platform::Mutex> makeMutex(const std::string& name) override { return real_.makeMutex(name); }
  std::unique_ptr<platform::Condition> makeCondition(const std::string& name) override {
    return real_.makeCondition(name);
  }
  std::unique_ptr<platform::Thread> startThread(const std::string& name, std::function<void()> run) override {
    return real_.startThread(name, std::move(run));
  }
  void runAside(const std::function<void()>& work) override { real_.runAside(work); }

  /// Set before there are threads; called on the one that sleeps.
  std::function<void(platform::Duration)> onSleep;

 private:
  backend::RealRuntime real_;
};

constexpr ClipPlan kClip{100, 5000, 30};

class RecaptureRealThreads : public testing::Test {
 protected:
  void makeController() {
    RecaptureOutlets outlets;
    outlets.timecodeView = &overlay_;
    outlets.timelineView = &timeline_;
    outlets.thumbnailView = &strip_;
    outlets.messageText = &messageText_;
    controller_ =
        std::make_unique<ZQACRecaptureController>(RecaptureServices{runtime_, platform_, compression_, settings_,
                                                                    notifications_, alerts_, strings_, files_, log_},
                                                  outlets);
    controller_->setDelegate(&delegate_.operations);
    controller_->setSelectedVideoDevice(device_);
    controller_->loadATape(makeTape({{kClip, {200, 6000, 30}}}));
  }

  static SharedBytes frameOf(int timecode, int date) {
    FrameRecipe recipe;
    recipe.timecode = timecodeAtFrame(DVSystem::pal625_50, timecode);
    recipe.date = dateAt(date);
    return SharedBytes::copyOf(frameBytesOf(recipe));
  }
  void pushTimes(int times, const SharedBytes& frame) {
    for (int i = 0; i < times; ++i) device_->push(frame);
  }
  void runUntilQuit() { runtime_.mainLoop().run(); }
  void quit() {
    runtime_.mainLoop().post([this] { runtime_.mainLoop().quit(); });
  }

  /// Pushes this frame from a second thread until `stop`.
  std::unique_ptr<platform::Thread> pushUntil(const std::atomic<bool>& stop, const SharedBytes& frame) {
    return runtime_.startThread("delivery", [this, &stop, frame] {
      while (!stop) device_->push(frame);
    });
  }

  /// Destroys the controller while a thread of its sleeps for `duration`, with these frames arriving.
  void destroyInASleepOf(platform::Duration duration, const SharedBytes& frame) {
    std::atomic<bool> slept = false;
    std::atomic<bool> gone = false;
    runtime_.onSleep = [&](platform::Duration wanted) {
      if (wanted == duration && !slept.exchange(true)) quit();
    };
    makeController();
    controller_->startRecapture();
    const auto pusher = pushUntil(gone, frame);
    runUntilQuit();
    controller_.reset();
    gone = true;
    pusher->join();
    EXPECT_TRUE(slept);
  }

  CaptureJournal journal_;
  CaptureLog log_;
  RecordingAlerts alerts_{journal_};
  FakeStrings strings_;
  MemoryMovies movies_;
  platform::NotificationCenter notifications_;
  HurriedRuntime runtime_;
  outlets::PlainOverlay overlay_{runtime_};
  RecordingTimeline timeline_{journal_};
  RecordingStrip strip_{journal_};
  RecordingTextField messageText_{journal_};
  RecordingFiles files_{journal_};
  RecordingRecaptureDelegate delegate_{journal_};
  backend::SessionPlatform platform_{runtime_, movies_, log_, {}};
  FakeCompression compression_;
  backend::MemorySettings settings_{runtime_};
  std::shared_ptr<PushDevice> device_ = std::make_shared<PushDevice>(runtime_);
  std::unique_ptr<ZQACRecaptureController> controller_;
};

// Many frames at the start each ask for the recording.
TEST_F(RecaptureRealThreads, AClipThatIsAskedForBySeveralFramesIsRecorded) {
  makeController();
  controller_->startRecapture();
  const auto delivery = runtime_.startThread("delivery", [&] {
    const SharedBytes start = frameOf(5000, 100);
    while (!controller_->isRecording()) device_->push(start);
    // The session is restarted meanwhile: what was not taken is played again.
    while (delegate_.movies == 0 && controller_->startTimecode() != nullTimecode) device_->push(start);
    for (int frame = 1; frame < kClip.frames; ++frame) device_->push(frameOf(5000 + frame, 100));
    quit();
  });
  runUntilQuit();
  delivery->join();
  EXPECT_EQ(delegate_.movies, 1);
}

TEST_F(RecaptureRealThreads, TheUserStartsAndCancelsWhileFramesArrive) {
  makeController();
  std::atomic<bool> stop = false;
  const auto pusher = pushUntil(stop, frameOf(5000, 100));
  for (int i = 0; i < 40; ++i) {
    runtime_.mainLoop().post([this] { controller_->startRecapture(); });
    quit();
    runUntilQuit();
  }
  EXPECT_FALSE(controller_->isStart());
  stop = true;
  pusher->join();
  controller_.reset();
  platform_.finishFiles();
}

TEST_F(RecaptureRealThreads, TheMainThreadAsksAndCommandsWhileFramesArrive) {
  makeController();
  controller_->startRecapture();
  std::atomic<int> pushed = 0;
  const auto pusher = runtime_.startThread("delivery", [&] {
    const SharedBytes frame = frameOf(5000, 100);
    for (; pushed < 600; ++pushed) device_->push(frame);
  });
  for (int i = 0; pushed < 600; ++i) {
    EXPECT_TRUE(controller_->isStart());
    EXPECT_EQ(controller_->totalCountOfClipsToBeRecaptured(), 2);
    controller_->setRecaptureModeTag(i % 2 * 2);
    controller_->refreshDevices();
    const SequenceValue sequence = controller_->sequenceFound();
    EXPECT_TRUE(sequence == nullptr || sequence->sequenceId() == "1");
    EXPECT_FALSE(controller_->processNote().empty());
    controller_->isDevicePlaying();
    quit();
    runUntilQuit();
  }
  pusher->join();
  controller_.reset();
}

TEST_F(RecaptureRealThreads, TheControllerGoesWhileItSeeks) {
  for (int i = 0; i < 20; ++i) destroyInASleepOf(std::chrono::seconds(4), frameOf(0, 0));
}

TEST_F(RecaptureRealThreads, TheControllerGoesWhileItPrerolls) {
  for (int i = 0; i < 20; ++i) destroyInASleepOf(std::chrono::seconds(4), frameOf(5000, 100));
}

TEST_F(RecaptureRealThreads, TheControllerGoesAfterThePrerollRestartedTheSession) {
  for (int i = 0; i < 20; ++i) destroyInASleepOf(std::chrono::seconds(1), frameOf(5000, 100));
}

TEST_F(RecaptureRealThreads, TheControllerGoesWhileSeveralThreadsWaitForARequest) {
  for (int i = 0; i < 20; ++i) {
    makeController();
    for (int start = 0; start < 5; ++start) controller_->startRecapture();
    pushTimes(260, frameOf(5000, 100));
    controller_.reset();
  }
}

TEST_F(RecaptureRealThreads, TheControllerGoesBetweenFramesOfEveryKind) {
  const SharedBytes frames[] = {frameOf(0, 0), frameOf(5000, 100), frameOf(6000, 200), frameOf(5500, 150)};
  for (int i = 0; i < 30; ++i) {
    makeController();
    controller_->startRecapture();
    std::atomic<bool> stop = false;
    std::atomic<int> pushed = 0;
    const auto pusher = runtime_.startThread("delivery", [&] {
      while (!stop) {
        device_->push(frames[pushed / 300 % 4]);
        if (++pushed == 200 + i * 30) quit();
      }
    });
    runUntilQuit();
    controller_.reset();
    stop = true;
    pusher->join();
  }
}

}  // namespace
}  // namespace zq::test
