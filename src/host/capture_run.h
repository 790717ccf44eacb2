#pragma once
// One capture from the command line: the host of a capture controller over a device.

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "backends/deck/deck_options.h"
#include "backends/deck/tape_image.h"
#include "backends/session/session_platform.h"
#include "capture/controller.h"
#include "host/clip_ledger.h"
#include "host/console.h"
#include "host/progress_line.h"
#include "host/session_report.h"
#include "platform/runtime.h"

namespace zq::host {

/// What a run needs, made by the command. All of it outlives the run.
struct CaptureRunSetup {
  platform::Runtime& runtime;
  platform::Clock& wall;
  platform::Settings& settings;
  platform::CompressionPlatform& compression;
  platform::MovieWriterFactory& writers;
  Console& console;
  ClipFiles& files;
  std::shared_ptr<backend::TapeImage> tape;
  backend::DeckOptions deck;
  /// How often an interrupt is looked for and the progress shown, in the runtime's time.
  platform::Duration lookEvery;
  std::function<bool()> interrupted;
};

class CaptureRun {
 public:
  explicit CaptureRun(const CaptureRunSetup& setup);
  ~CaptureRun();

  /// Captures to the end of the tape, an interrupt or an error, and returns what became of it. All files are complete.
  SessionReport run();

  /// After run().
  const std::optional<Error>& error() const { return error_; }
  TapeFindings findings() const;
  /// What of the tape the files lack, a line each: frames missing from a clip's movie, and more frames outside all
  /// clips than the settings leave out.
  std::vector<std::string> missingFrames(const SessionReport& report) const;

 private:
  struct Parts;
  void start();
  void frameSeen(platform::QTCaptureFileOutput& output, const platform::QTSampleBuffer& frame);
  void look();
  std::optional<QueueProgress> queue() const;
  void transportChanged();
  void fail(const Error& error);
  void stopRecording();
  void takeDown();
  bool tapeGoesOnAfter(std::int64_t frames) const;
  ZQACControllerDelegate makeDelegate();

  // Constant after construction.
  const CaptureRunSetup setup_;
  const std::unique_ptr<ClipLedger> ledger_;
  const ZQACControllerDelegate delegate_;

  // Set before the first frame. Frames come only while the controller is the outputs' delegate, so it lives then.
  ZQACController* delegateOfFrames_ = nullptr;

  // Main thread only.
  std::unique_ptr<Parts> parts_;
  bool wasInterrupted_ = false;
  std::optional<Error> error_;
};

}  // namespace zq::host
