#include "host/recapture_pass.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "recapture/tape_search.h"

namespace zq::host {
namespace {

constexpr std::int32_t kAutomaticTag = 0;
constexpr std::int32_t kManualTag = 1;

// A date that was worked out from timecodes may be a second beside the tape's.
constexpr double kBesideTheStart = 1;

bool isAtStartOf(const ClipValue& clip, const DateValue& date) {
  if (!clip || !clip->dateStartClip() || !date) return true;
  return std::abs(date->timeIntervalSinceDate(*clip->dateStartClip())) <= kBesideTheStart;
}

void armStartAgain(ZQACRecaptureController& controller) {
  const ClipValue clip = controller.clipToBeRecaptured();
  if (clip && clip->timecodeStartClip()) controller.setStartTimecode(*clip->timecodeStartClip());
}

RecaptureOutlets outletsFor(NoteLog& note) {
  RecaptureOutlets outlets;
  outlets.messageText = &note;
  return outlets;
}

// Frames without a date are passed over, and with them the end of a clip that blank tape or damage follows: its movie
// would run on to the next dated frame. What is being recorded ends at its end timecode, dated or not.
void closeAtUndatedEnd(ZQACRecaptureController& controller, const platform::QTSampleBuffer& frame) {
  const bool writes = controller.movieFileOutput().outputFileURL() && controller.startTimecode() == nullTimecode;
  if (!writes || !frame.smpteTime || controller.isPrerolling()) return;
  if (controller.getDateFromSampleBuffer(frame)) return;
  controller.setCurrentTimecode(*frame.smpteTime);
  controller.generateMovieFile();
}

}  // namespace

RecapturePass::RecapturePass(const RecapturePassSetup& setup)
    : setup_(setup),
      note_(setup.runtime, setup.console),
      delegate_(makeDelegate()),
      watch_(setup.runtime.clock().now(), setup.limits) {}

RecapturePass::~RecapturePass() = default;

// Every movie gets a path of the host's own: without one the controller would not come out of its recording. It begins
// one at a timecode, whatever the date, and where timecodes start again with every scene the preroll may have come to
// the same timecode in the scene before. Then an answer without a path lets nothing be written.
ZQACRecaptureControllerDelegate RecapturePass::makeDelegate() {
  ZQACRecaptureControllerDelegate delegate;
  delegate.acRecaptureControllerWillRecord = [this](ZQACRecaptureController& controller) {
    const ClipValue clip = controller.clipToBeRecaptured();
    if (!isAtStartOf(clip, controller.currentDateOnClip())) {
      cameToAnotherStart_ = &controller;
      return std::optional(RecapturePaths{});
    }
    return std::optional(RecapturePaths{setup_.ledger.open(clip ? clip->clipId() : "")});
  };
  delegate.acRecaptureControllerDidRecordInfo = [this](auto&, const RecaptureInfo&) { setup_.ledger.close(); };
  delegate.acRecaptureControllerEndRecordAllClipsInfo = [this](auto&, const auto&) { end(End::ended); };
  return delegate;
}

RecapturePass::End RecapturePass::run() {
  backend::SessionPlatform::Observer observer;
  observer.files.finished = [this](const backend::FinishedFile& file) { setup_.ledger.movieFinished(file); };
  observer.files.failed = [this](const std::string&, const Error& error) {
    if (!error_) error_ = error;
    end(End::error);
  };
  observer.deviceFailed = [this](const Error& error) {
    if (!error_) error_ = error;
    end(End::error);
  };
  observer.frameSeen = [this](platform::QTCaptureFileOutput& output, const platform::QTSampleBuffer& frame) {
    frameSeen(output, frame);
  };
  platform_ = std::make_unique<backend::SessionPlatform>(setup_.runtime, setup_.writers, setup_.console, observer);
  platform_->setInputDevices({setup_.device});
  orderedPlatform_ = std::make_unique<DecidingOutputFirst>(*platform_);
  start();
  if (!end_) setup_.runtime.mainLoop().run();
  takeDown();
  return *end_;
}

platform::CapturePlatform& RecapturePass::capturePlatform() const {
  if (setup_.compressed.areCompressed()) return *orderedPlatform_;
  return *platform_;
}

// The controller decides by the frames of its movie output, or of its other one while that one compresses.
void RecapturePass::frameSeen(const platform::QTCaptureFileOutput& output, const platform::QTSampleBuffer& frame) {
  const bool isOfMovie = &output == movieOutput_;
  if (isOfMovie == setup_.compressed.areCompressed()) return;
  ++frames_;
  if (ZQACRecaptureController* controller = std::exchange(cameToAnotherStart_, nullptr)) armStartAgain(*controller);
  closeAtUndatedEnd(*watchedController_, frame);
}

void RecapturePass::start() {
  controller_ = std::make_unique<ZQACRecaptureController>(
      RecaptureServices{setup_.runtime, capturePlatform(), setup_.compression, setup_.settings, setup_.notifications,
                        setup_.alerts, setup_.strings, setup_.files, setup_.console},
      outletsFor(note_));
  watchedController_ = controller_.get();
  movieOutput_ = &controller_->movieFileOutput();
  controller_->setDelegate(&delegate_);
  transportObservation_ = setup_.notifications.addObserver(
      platform::QTCaptureDeviceAttributeDidChangeNotification, [this](const platform::Notification&) {
        const auto controls = setup_.device->avcTransportControls();
        watch_.transportChanged(controls.value_or(platform::AVCTransportControls{0, 0}), setup_.runtime.clock().now());
      });
  controller_->setSelectedVideoDevice(setup_.device);
  if (!controller_->hasRecordingDevice()) {
    error_ = Error{"The device cannot be used", "See the message above."};
    return end(End::error);
  }
  chooseCompression();
  controller_->setRecaptureModeTag(setup_.manual ? kManualTag : kAutomaticTag);
  controller_->openRecapture();
  controller_->loadATape(setup_.tape);
  controller_->startRecapture();
  look();
}

// A session starts uncompressed, whatever the one before it had.
void RecapturePass::chooseCompression() {
  if (!setup_.compressed.areCompressed()) return;
  controller_->setFitToSizeTag(setup_.compressed.sizeTag);
  controller_->setVideoCompressionOptions(
      controller_->allVideoCompressionOptions().at(static_cast<std::size_t>(setup_.compressed.choice)));
}

std::optional<QueueProgress> RecapturePass::queue() const {
  if (!setup_.compressed.areCompressed()) return std::nullopt;
  const backend::SessionPlatform::QueueLevel level = platform_->queueLevel();
  return QueueProgress{level.held, level.capacity};
}

TapeWatch::Session RecapturePass::session() const {
  TapeWatch::Session session;
  session.frames = frames_;
  session.recordedClips = setup_.ledger.closedClips();
  session.sequenceFound = controller_->sequenceFound() != nullptr;
  session.settling = controller_->isSettling();
  session.recording = controller_->isRecording() || controller_->isPrerolling();
  if (const ClipValue clip = controller_->clipToBeRecaptured()) {
    session.place = compareDates(controller_->currentDateOnClip(), clip->dateStartClip());
  }
  return session;
}

void RecapturePass::look() {
  if (end_) return;
  if (setup_.interrupted && setup_.interrupted()) return cancel();
  if (setup_.runtime.clock().now() > setup_.deadline) return end(End::overdue);
  setup_.progress.show(RecaptureProgress{controller_->processNote(), valueWithSMPTETime(controller_->currentTimecode()),
                                         controller_->currentDateOnClip(), setup_.ledger.recapturedClips(),
                                         static_cast<int>(setup_.ledger.clips().size()), queue()});
  obey(watch_.look(session(), setup_.runtime.clock().now()));
  if (!end_) lookTimer_ = setup_.runtime.mainLoop().startTimer(setup_.lookEvery, [this] { look(); });
}

// A stop first, so that the controller gives its next command afresh.
void RecapturePass::obey(TapeAdvice advice) {
  constexpr long kReverse = -kSpeedPlay;
  switch (advice) {
    case TapeAdvice::none:
      return;
    case TapeAdvice::play:
      controller_->stopPlaying();
      return controller_->setDevicePlaying(true);
    case TapeAdvice::playBackwards:
      controller_->stopPlaying();
      return controller_->setDeviceRewindingInSpeed(kReverse);
    case TapeAdvice::windToBeginning:
      return controller_->setDeviceRewinding(true);
    case TapeAdvice::windToEnd:
      return controller_->setDeviceFastForwarding(true);
    case TapeAdvice::giveUpAtEnd:
      return end(End::gaveUpAtEnd);
    case TapeAdvice::giveUpAtBeginning:
      return end(End::gaveUpAtBeginning);
    case TapeAdvice::giveUpUndated:
      return end(End::gaveUpUndated);
    case TapeAdvice::giveUpClip:
      return end(End::gaveUpClip);
  }
}

// As the record button does it: the controller says that the last clip is lost, and deletes its movie.
void RecapturePass::cancel() {
  setup_.ledger.cancel();
  if (controller_->isStart()) controller_->startRecapture();
  end(End::interrupted);
}

void RecapturePass::end(End end) {
  if (!end_) end_ = end;
  setup_.runtime.mainLoop().quit();
}

// The controller goes first, which waits for what it is doing; only then nothing commands the deck any more. The
// outputs complete their files, and post what became of them; the loop runs once more for that.
void RecapturePass::takeDown() {
  if (lookTimer_) lookTimer_->invalidate();
  setup_.progress.clear();
  transportObservation_.reset();
  if (const ClipValue clip = controller_->clipToBeRecaptured()) clipLookedFor_ = clip->clipId();
  lastDate_ = controller_->currentDateOnClip();
  controller_.reset();
  setup_.device->setAVCTransportControls({0, 0});
  platform_->finishFiles();
  setup_.runtime.mainLoop().post([this] { setup_.runtime.mainLoop().quit(); });
  setup_.runtime.mainLoop().run();
}

}  // namespace zq::host
