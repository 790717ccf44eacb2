#pragma once
// The real recapture controller on a fake platform, in virtual time.

#include <gtest/gtest.h>

#include <chrono>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "backends/settings/memory_settings.h"
#include "backends/time/virtual_runtime.h"
#include "platform/notification_center.h"
#include "recapture/controller.h"
#include "recapture/process_notes.h"
#include "support/capture_buffers.h"
#include "support/capture_fakes.h"
#include "support/capture_journal.h"
#include "support/capture_recorders.h"
#include "support/compression_fakes.h"
#include "support/recapture_recorders.h"
#include "support/recapture_tape.h"

namespace zq::test {

class NoBindingArea final : public outlets::BindingArea {
 public:
  void setActiveSequence(SequenceValue) override {}
  void setActiveClip(ClipValue) override {}
  void refresh() override {}
};

/// What an end of file tells.
inline void tellThatFileIsFinished(FakeMovieFileOutput& output, const std::string& path) {
  output.delegate->captureOutputDidFinishRecordingToOutputFileAtURLForConnectionsDueToError(
      output, path, output.connections(), std::nullopt);
}

/// Its controller comes with all outlets, a recording delegate, no device and no tape.
class RecaptureTest : public testing::Test {
 protected:
  using Lines = std::vector<std::string>;
  static constexpr platform::AVCTransportControls kStopped{0, 0};
  static constexpr platform::AVCTransportControls kPlaying{1, 10000};
  static constexpr int kSettlingFrames = 251;

  RecaptureTest() {
    outlets_.recaptureView = &view_;
    outlets_.recordButton = &recordButton_;
    outlets_.timelineView = &timeline_;
    outlets_.thumbnailView = &strip_;
    outlets_.bindingAreaView = &bindingArea_;
    outlets_.timecodeView = &overlay_;
    outlets_.messageLayout = &message_;
    outlets_.messageText = &messageText_;
    makeController();
    journal_.clear();
  }

  void makeController() {
    controller_ =
        std::make_unique<ZQACRecaptureController>(RecaptureServices{runtime_, platform_, compression_, settings_,
                                                                    notifications_, alerts_, strings_, files_, log_},
                                                  outlets_);
    controller_->setDelegate(&delegate_.operations);
  }

  std::shared_ptr<FakeCaptureDevice> selectDevice(std::optional<platform::AVCTransportControls> controls) {
    auto device = std::make_shared<FakeCaptureDevice>(journal_);
    device->controls = controls;
    device->center = &notifications_;
    controller_->setSelectedVideoDevice(device);
    device->controls = controls;
    journal_.clear();
    return device;
  }

  TapeValue load(const std::vector<std::vector<ClipPlan>>& sequences) {
    TapeValue tape = makeTape(sequences);
    controller_->loadATape(tape);
    journal_.clear();
    return tape;
  }

  void deliver(const platform::QTSampleBuffer& buffer) { platform_.deliver(buffer); }

  /// A 625/50 frame. Its timecode is a count of frames, its date in seconds as dateAt() takes them.
  void play(std::optional<int> timecode, std::optional<int> date) { playTimes(1, timecode, date); }
  void playTimes(int times, std::optional<int> timecode, std::optional<int> date) {
    FrameRecipe recipe;
    if (timecode) recipe.timecode = timecodeAtFrame(recipe.system, *timecode);
    if (date) recipe.date = dateAt(*date);
    const platform::QTSampleBuffer buffer = bufferOf(recipe);
    for (int i = 0; i < times; ++i) deliver(buffer);
  }

  /// Finds the sequence at this date and lets it settle there; the journal then begins anew.
  void settleAt(int timecode, int date) {
    playTimes(1 + kSettlingFrames, timecode, date);
    journal_.clear();
  }

  /// Starts in automatic mode; the tape then plays from its beginning.
  void start() {
    controller_->startRecapture();
    controller_->setDevicePlaying(true);
    journal_.clear();
  }

  /// Runs the main loop for this much virtual time.
  void letPass(platform::Duration duration) {
    const auto quitter = runtime_.mainLoop().startTimer(duration, [this] { runtime_.mainLoop().quit(); });
    runtime_.mainLoop().run();
  }
  double secondsNow() { return std::chrono::duration<double>(runtime_.clock().now().time_since_epoch()).count(); }

  Lines linesOf(std::initializer_list<std::string_view> names) const { return journal_.linesOf(names); }
  Lines deviceCommands() const { return linesOf({"device"}); }
  std::string note() const { return controller_->processNote(); }

  FakeMovieFileOutput& movieFileOutput() { return *platform_.parts.fileOutputs.at(0); }
  FakeMovieFileOutput& movieFileOutputAlter() { return *platform_.parts.fileOutputs.at(1); }

  CaptureJournal journal_;
  backend::VirtualRuntime runtime_;
  platform::NotificationCenter notifications_;
  RecordingAlerts alerts_{journal_};
  FakeStrings strings_;
  CaptureLog log_;
  RecordingFiles files_{journal_};
  FakeCapturePlatform platform_{journal_};
  FakeCompression compression_;
  backend::MemorySettings settings_{runtime_};
  RecordingOverlay overlay_{journal_};
  RecordingCaptureView view_{journal_};
  RecordingTimeline timeline_{journal_};
  RecordingStrip strip_{journal_};
  NoBindingArea bindingArea_;
  RecordingPanel message_{journal_, "message"};
  RecordingTextField messageText_{journal_};
  RecordingButton recordButton_{journal_};
  RecaptureOutlets outlets_;
  RecordingRecaptureDelegate delegate_{journal_};
  std::unique_ptr<ZQACRecaptureController> controller_;
};

}  // namespace zq::test
