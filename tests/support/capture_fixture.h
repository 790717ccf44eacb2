#pragma once
// The real capture controller on a fake platform, in virtual time.

#include <gtest/gtest.h>

#include <chrono>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "backends/settings/memory_settings.h"
#include "backends/time/virtual_runtime.h"
#include "capture/controller.h"
#include "capture/settings_keys.h"
#include "outlets/plain_outlets.h"
#include "platform/notification_center.h"
#include "support/capture_buffers.h"
#include "support/capture_fakes.h"
#include "support/capture_journal.h"
#include "support/capture_recorders.h"
#include "support/compression_fakes.h"
#include "support/scratch_folder.h"

namespace zq::test {

/// Its controller comes with all outlets, a recording delegate, the default settings and no device.
class CaptureTest : public testing::Test {
 protected:
  using Lines = std::vector<std::string>;

  CaptureTest() {
    ZQACController::initialize(settings_);
    outlets_.captureView = &view_;
    outlets_.timecodeView = &overlay_;
    outlets_.configurationPopUp = &configurationPopUp_;
    outlets_.compressionPopUp = &compressionPopUp_;
    outlets_.playButton = &playButton_;
    outlets_.rewindButton = &rewindButton_;
    outlets_.forwardButton = &forwardButton_;
    outlets_.recordButton = &recordButton_;
    makeController();
    journal_.clear();
  }

  void makeController() {
    controller_ = std::make_unique<ZQACController>(
        CaptureServices{runtime_, platform_, compression_, settings_, notifications_, alerts_, strings_, log_},
        outlets_);
    controller_->setDelegate(&delegate_.operations);
  }

  std::shared_ptr<FakeCaptureDevice> selectDevice(std::optional<platform::AVCTransportControls> controls) {
    auto device = std::make_shared<FakeCaptureDevice>(journal_);
    device->controls = controls;
    controller_->setSelectedVideoDevice(device);
    journal_.clear();
    return device;
  }

  void startRecording() { controller_->setRecording(true); }
  void stopRecording() { controller_->setRecording(false); }

  void deliver(const platform::QTSampleBuffer& buffer) { platform_.deliver(buffer); }

  /// A 625/50 frame with this id. Its timecode is a count of frames, its date in seconds as dateAt() takes them.
  void play(std::uint32_t id, std::optional<int> timecode, std::optional<int> date,
            platform::SceneChangeType change = platform::SceneChangeType::none) {
    FrameRecipe recipe;
    recipe.id = id;
    recipe.change = change;
    if (timecode) recipe.timecode = timecodeAtFrame(recipe.system, *timecode);
    if (date) recipe.date = dateAt(*date);
    deliver(bufferOf(recipe));
  }

  /// Starts a recording whose second clip is open: the first dated frame, with the date of second 0 and this id and
  /// timecode, has closed the empty first one.
  void startInSecondClip(std::uint32_t id, int timecode) {
    startRecording();
    play(id, timecode, 0);
    journal_.clear();
  }

  /// Runs the main loop for this much virtual time.
  void letPass(platform::Duration duration) {
    const auto quitter = runtime_.mainLoop().startTimer(duration, [this] { runtime_.mainLoop().quit(); });
    runtime_.mainLoop().run();
  }

  Lines delegateCalls() const { return journal_.linesOf({"delegate"}); }
  Lines deviceCommands() const { return journal_.linesOf({"device"}); }
  Lines movieCommands() const { return journal_.linesOf({"movie"}); }
  Lines linesOf(std::initializer_list<std::string_view> names) const { return journal_.linesOf(names); }

  std::vector<std::uint32_t> thumbnailsOf(int clip) const {
    return frameIdsInFile(delegate_.thumbnailsPath(clip), DVSystem::pal625_50);
  }

  FakeMovieFileOutput& fileOutput() { return *platform_.parts.fileOutputs.at(0); }
  FakeMovieFileOutput& movieFileOutput() { return *platform_.parts.fileOutputs.at(1); }

  ScratchFolder scratch_;
  CaptureJournal journal_;
  backend::VirtualRuntime runtime_;
  backend::MemorySettings settings_{runtime_};
  platform::NotificationCenter notifications_;
  RecordingAlerts alerts_{journal_};
  FakeStrings strings_;
  CaptureLog log_;
  FakeCapturePlatform platform_{journal_};
  FakeCompression compression_;
  RecordingOverlay overlay_{journal_};
  RecordingCaptureView view_{journal_};
  outlets::PlainPopUp configurationPopUp_;
  outlets::PlainPopUp compressionPopUp_;
  outlets::PlainButton playButton_, rewindButton_, forwardButton_, recordButton_;
  CaptureOutlets outlets_;
  RecordingDelegate delegate_{journal_, scratch_.path()};
  std::unique_ptr<ZQACController> controller_;
};

}  // namespace zq::test
