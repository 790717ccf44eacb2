// A recapture session: the tape, the record button, alerts, and the end of sequences.

#include <fmt/format.h>

#include <mutex>

#include "recapture/controller.h"
#include "recapture/process_notes.h"

namespace zq {
namespace {

constexpr char kNoDeviceMessage[] = "There is no selected device to recapture!";
constexpr char kNoDeviceInformative[] = "Please select a device.";
constexpr char kCanceledMessage[] = "Recapture has been canceled!";
constexpr char kCanceledInformative[] = "You have lost the recapture of the last clip.";
constexpr char kNoClipMessage[] = "There is no clip to be recaptured in current tape!";
constexpr char kNoClipInformative[] = "Please select another tape.";
constexpr char kTapeDoneMessage[] = "Recapture done in current tape, please select another tape";
constexpr char kSequenceDoneMessage[] = "Recapture done in current sequence, please move the tape to another position";
constexpr char kCountsInformative[] = "%d clip recaptured - %d failed";

constexpr std::int32_t kAutomaticMode = 0;
constexpr std::int32_t kManualMode = 1;

/// The text with its two "%d" filled in, in its own order and language.
std::string withCounts(std::string text, std::int32_t recaptured, std::int32_t failed) {
  for (const std::int32_t count : {recaptured, failed}) {
    const std::size_t place = text.find("%d");
    if (place == std::string::npos) break;
    text.replace(place, 2, std::to_string(count));
  }
  return text;
}

}  // namespace

void ZQACRecaptureController::openRecapture() {
  setIsRecaptureDone(false);
  screen_.setOverlayHidden(false);
}

void ZQACRecaptureController::closeRecapture() {
  screen_.showNothing();
  setCurrentTape(nullptr);
  setCurrentClip(nullptr);
  setSelectedVideoDevice(nullptr);
}

void ZQACRecaptureController::loadATape(const TapeValue& tape) {
  screen_.hideCursor();
  setCurrentTape(tape);
}

void ZQACRecaptureController::setCurrentTape(const TapeValue& tape) {
  const std::lock_guard guard(lock_);
  if (tape == currentTape_) return;
  currentTape_ = tape;
  if (tape) tape->findClipsToBeRecapturedInTape();
  totalCountOfClipsToBeRecaptured_ = tape ? static_cast<std::int32_t>(tape->clipsToBeRecaptured().size()) : 0;
  screen_.showTape(tape);
}

void ZQACRecaptureController::startRecapture() {
  const std::lock_guard guard(lock_);
  screen_.raiseMessage();
  setIsStart(!isStart_);
  screen_.allowPicking(!isStart_);
  if (!selectedVideoDevice()) return triggerAlert(kNoDeviceMessage, kNoDeviceInformative);
  if (!isStart_) return cancelRecapture();
  screen_.showMessage(true);
  if (totalCountOfClipsToBeRecaptured_ == 0) {
    stopPlaying();
    return triggerAlert(kNoClipMessage, kNoClipInformative);
  }
  beginRecapture();
}

void ZQACRecaptureController::cancelRecapture() {
  attributeObservation_.reset();
  session_->stopRunning();
  stopPlaying();
  if (moviePath_) static_cast<void>(files_.removeFile(*moviePath_).ok());
  setProcessNote("");
  triggerAlert(kCanceledMessage, kCanceledInformative);
}

// Any mode but the automatic one starts as the manual mode.
void ZQACRecaptureController::beginRecapture() {
  if (recaptureModeTag_ == kAutomaticMode) {
    beginAutomaticMode();
  } else {
    setProcessNote(note::kStartedManual);
    setDevicePlaying(true);
  }
  if (!isRecapStart_) {
    preroll_.detach();
  } else {
    movieFileOutput_->recordToOutputFileURL(std::nullopt);
    preroll_.end();
  }
}

void ZQACRecaptureController::beginAutomaticMode() {
  setProcessNote(note::kStartedAutomatic);
  stopPlaying();
  setDeviceRewinding(true);
  attributeObservation_ = notifications_.addObserver(platform::QTCaptureDeviceAttributeDidChangeNotification,
                                                     [this](const auto&) { devicesAttributeDidChange(); });
}

// The rewind has come to the beginning of the tape.
void ZQACRecaptureController::devicesAttributeDidChange() {
  const std::lock_guard guard(lock_);
  const auto device = selectedVideoDevice();
  const auto controls = device ? device->avcTransportControls() : std::nullopt;
  if (!controls || isRecaptureDone_ || controls->speed != 0) return;
  setProcessNote(note::kSearchingRightSequence);
  setDevicePlaying(true);
  attributeObservation_.reset();
}

void ZQACRecaptureController::setIsStart(bool start) {
  const std::lock_guard guard(lock_);
  isStart_ = start;
  if (delegate_ == nullptr) return;
  const auto& told =
      start ? delegate_->acRecaptureControllerDidStartRecapture : delegate_->acRecaptureControllerDidEndRecapture;
  if (told) told();
}

void ZQACRecaptureController::triggerAlert(const std::string& messageText, const std::string& informativeText) {
  const std::lock_guard guard(lock_);
  int answer = 0;
  lock_.releaseWhile([&] { answer = alerts_.runModal(localized(messageText), localized(informativeText)); });
  if (answer != platform::Alerts::kDefaultButton) return;
  screen_.showMessage(false);
  offsetAfterCallOfDidOutputSample_ = 0;
  setIsStart(false);
  setSequenceFound(nullptr);
  screen_.switchRecordButtonOff();
  screen_.hideCursor();
  screen_.allowPicking(!isStart_);
  runtime_.mainLoop().post([this, alive = std::weak_ptr(alive_)] {
    if (!alive.expired()) endRecordForDelegate();
  });
}

void ZQACRecaptureController::endRecordForDelegate() {
  const std::lock_guard guard(lock_);
  setProcessNote(note::kEnd);
  if (delegate_ == nullptr || !delegate_->acRecaptureControllerEndRecordAllClipsInfo) return;
  delegate_->acRecaptureControllerEndRecordAllClipsInfo(*this, allClipsInfosForMainApp_);
}

// Any mode but the manual one ends a sequence as the automatic mode.
void ZQACRecaptureController::endRecapture() {
  const std::lock_guard guard(lock_);
  if (recaptureModeTag_ == kManualMode) {
    endSequenceInManualMode();
  } else {
    endSequenceInAutomaticMode();
  }
}

void ZQACRecaptureController::endSequenceInAutomaticMode() {
  setSequenceFound(nullptr);
  if (!clipToBeRecaptured_ || !clipToBeRecaptured_->isLastClip()) {
    seeking();
    screen_.showMessage(false);
    return;
  }
  stopPlaying();
  const auto inAll = currentTape_ ? static_cast<std::int32_t>(currentTape_->clipsToBeRecaptured().size()) : 0;
  triggerAlert(kTapeDoneMessage, withCounts(localized(kCountsInformative), inAll - totalCountOfClipsToBeRecaptured_,
                                            totalCountOfClipsToBeRecaptured_));
  screen_.showMessage(false);
}

void ZQACRecaptureController::endSequenceInManualMode() {
  stopPlaying();
  setIsRecaptureDone(true);
  const std::int32_t inAll = sequenceFound_ ? sequenceFound_->recapturedClipsCount() : 0;
  triggerAlert(kSequenceDoneMessage,
               withCounts(localized(kCountsInformative), inAll - totalCountOfClipsToBeRecapturedInSequence_,
                          totalCountOfClipsToBeRecapturedInSequence_));
  screen_.showMessage(false);
}

void ZQACRecaptureController::setIsRecaptureDone(bool done) {
  const std::lock_guard guard(lock_);
  isRecaptureDone_ = done;
  if (done) stopPlaying();
}

}  // namespace zq
