#include "host/capture_run.h"

#include <fmt/format.h>

#include <utility>

#include "backends/deck/simulated_deck.h"
#include "dv/recording_date_scan.h"
#include "host/movie_guard.h"

namespace zq::host {
namespace {

constexpr char kEndOfTape[] = "endOfTape";

}  // namespace

/// What lives while the capture runs; each uses those before it.
struct CaptureRun::Parts {
  explicit Parts(const CaptureRunSetup& setup, const backend::SessionPlatform::Observer& observer)
      : platform(setup.runtime, setup.writers, setup.console, observer),
        deck(std::make_shared<backend::SimulatedDeck>(setup.runtime, notifications, setup.tape, setup.deck,
                                                      setup.console)),
        progress(setup.wall) {}

  platform::NotificationCenter notifications;
  PlainStrings strings;
  backend::SessionPlatform platform;
  std::shared_ptr<backend::SimulatedDeck> deck;
  std::unique_ptr<ZQACController> controller;
  platform::Observation keyObservation;
  std::shared_ptr<platform::Timer> lookTimer;
  ProgressLine progress;
};

CaptureRun::CaptureRun(const CaptureRunSetup& setup)
    : setup_(setup),
      ledger_(std::make_unique<ClipLedger>(setup.runtime, setup.files, setup.console)),
      delegate_(makeDelegate()) {}

CaptureRun::~CaptureRun() = default;

ZQACControllerDelegate CaptureRun::makeDelegate() {
  ZQACControllerDelegate delegate;
  delegate.accontrollerWillRecord = [this](ZQACController&) { return ledger_->open(); };
  delegate.accontrollerDidRecordInfo = [this](ZQACController&, const ClipInfo& info) { ledger_->close(info); };
  delegate.accontrollerEndRecord = [this](ZQACController&) { setup_.runtime.mainLoop().quit(); };
  return delegate;
}

SessionReport CaptureRun::run() {
  backend::SessionPlatform::Observer observer;
  observer.files.finished = [this](const backend::FinishedFile& file) { ledger_->movieFinished(file); };
  observer.files.failed = [this](const std::string&, const Error& error) { fail(error); };
  observer.deviceFailed = [this](const Error& error) { fail(error); };
  observer.frameSeen = [this](platform::QTCaptureFileOutput& output, const platform::QTSampleBuffer& frame) {
    frameSeen(output, frame);
  };
  parts_ = std::make_unique<Parts>(setup_, observer);
  const std::shared_ptr<backend::SimulatedDeck> deck = parts_->deck;
  SessionReport report;
  report.device = deck->uniqueID();
  start();
  setup_.runtime.mainLoop().run();
  takeDown();
  const backend::SessionPlatform::FrameCounts counts = parts_->platform.frameCounts();
  report.clips = ledger_->settle();
  report.delivered = ledger_->deliveredFrames();
  report.recorded = counts.recorded;
  report.dropped = counts.dropped;
  report.ended = error_ ? "error" : wasInterrupted_ ? "interrupted" : kEndOfTape;
  return report;
}

void CaptureRun::start() {
  parts_->controller = std::make_unique<ZQACController>(
      CaptureServices{setup_.runtime, parts_->platform, setup_.compression, setup_.settings, parts_->notifications,
                      setup_.console, parts_->strings, setup_.console},
      CaptureOutlets{});
  ZQACController& controller = *parts_->controller;
  delegateOfFrames_ = &controller;
  controller.setDelegate(&delegate_);
  parts_->keyObservation = controller.keys().addObserver([this](const std::string& key, KeyChange change) {
    if (key == "devicePlaying" && change == KeyChange::didChange) transportChanged();
  });
  controller.setSelectedVideoDevice(parts_->deck);
  if (!controller.hasRecordingDevice()) return fail({"The device cannot be used", "See the message above."});
  controller.setRecording(true);
  look();
}

// The controller has dealt with the frame; it is not written yet.
void CaptureRun::frameSeen(platform::QTCaptureFileOutput& output, const platform::QTSampleBuffer& frame) {
  ZQACController& controller = *delegateOfFrames_;
  if (&output != &controller.movieFileOutput() || !controller.isRecording()) return;
  keepMovieWithClip(controller, output, frame);
  const RecordingDateScan scan = scanRecordingDate(frame.bytesForAllSamples);
  ledger_->countFrame(factsOf(0, frame.smpteTime != nullptr, scan, frame.bytesForAllSamples),
                      frame.lengthForAllSamples());
}

void CaptureRun::look() {
  ZQACController& controller = *parts_->controller;
  if (setup_.interrupted && setup_.interrupted() && !wasInterrupted_) {
    wasInterrupted_ = true;
    return stopRecording();
  }
  const double rate = setup_.tape->system() == DVSystem::pal625_50 ? 25.0 : 30000.0 / 1001.0;
  parts_->progress.show({controller.currentTimecodeValue(), controller.currentDate(), ledger_->startedClips(),
                         ledger_->deliveredFrames(), parts_->platform.frameCounts().dropped, rate, queue()});
  parts_->lookTimer = setup_.runtime.mainLoop().startTimer(setup_.lookEvery, [this] { look(); });
}

std::optional<QueueProgress> CaptureRun::queue() const {
  if (!parts_->controller->isCompressed()) return std::nullopt;
  const backend::SessionPlatform::QueueLevel level = parts_->platform.queueLevel();
  return QueueProgress{level.held, level.capacity};
}

// A tape that stands has come to its end. Asking whether it plays is what ends the recording.
void CaptureRun::transportChanged() {
  const auto controls = parts_->deck->avcTransportControls();
  const bool stands = !controls || *controls == platform::AVCTransportControls{kModeStopped, 0};
  if (stands && parts_->controller) parts_->controller->isDevicePlaying();
}

void CaptureRun::fail(const Error& error) {
  if (!error_) error_ = error;
  stopRecording();
}

void CaptureRun::stopRecording() {
  if (parts_->controller) {
    parts_->controller->setRecording(false);
    parts_->controller->stopDevice();
  }
  setup_.runtime.mainLoop().quit();
}

// The outputs complete their files when they go, and post what became of them; the loop then runs once more for that.
void CaptureRun::takeDown() {
  if (parts_->lookTimer) parts_->lookTimer->invalidate();
  parts_->progress.clear();
  parts_->keyObservation.reset();
  if (!error_ && setup_.console.alerts() > 0) error_ = Error{"The capture was stopped", "See the message above."};
  parts_->controller->stopDevice();
  parts_->controller.reset();
  parts_->deck.reset();
  parts_->platform.finishFiles();
  setup_.runtime.mainLoop().post([this] { setup_.runtime.mainLoop().quit(); });
  setup_.runtime.mainLoop().run();
}

TapeFindings CaptureRun::findings() const {
  TapeFindings findings = ledger_->findings();
  if (error_ || wasInterrupted_) return findings;
  if (const auto trailing = setup_.tape->trailingBytes(); trailing.ok()) findings.setTrailingBytes(trailing.value());
  return findings;
}

// A tape image is played from its first frame on, each frame once.
bool CaptureRun::tapeGoesOnAfter(std::int64_t frames) const {
  const auto next = setup_.tape->locate(frames);
  return next.ok() && next.value().has_value();
}

std::vector<std::string> CaptureRun::missingFrames(const SessionReport& report) const {
  std::vector<std::string> lines;
  if (report.ended == kEndOfTape && tapeGoesOnAfter(report.delivered)) {
    lines.push_back(fmt::format("no frame came for {} s, which ended the capture after {} frames, but the tape goes on",
                                CaptureSettings(setup_.settings).detectEndTapeSecond(), report.delivered));
  }
  std::int64_t outside = report.delivered;
  for (const CapturedClip& clip : report.clips) outside -= clip.tapeFrames;
  const auto cuts = static_cast<std::int64_t>(report.clips.size()) + 1;
  if (outside > cuts * CaptureSettings(setup_.settings).nbDropFrame()) {
    lines.push_back(fmt::format("{} of {} frames belong to no clip", outside, report.delivered));
  }
  if (report.recorded == 0 && report.delivered > 0 && CaptureSettings(setup_.settings).captureMovie()) {
    lines.emplace_back("no movie was recorded");
  }
  for (const CapturedClip& clip : report.clips) {
    if (clip.moviePath.empty() || clip.movieFrames == clip.tapeFrames) continue;
    lines.push_back(fmt::format("the movie {} has {} of the {} frames that the tape played", clip.moviePath,
                                clip.movieFrames, clip.tapeFrames));
  }
  return lines;
}

}  // namespace zq::host
