// How the tape is driven. These block the calling thread for as long as the deck needs.

#include <mutex>

#include "recapture/controller.h"
#include "recapture/process_notes.h"

namespace zq {
namespace {

// Winding takes a deck some hundred seconds of tape ahead in this time.
constexpr platform::Duration kJump = std::chrono::seconds(4);
// Enough tape for a deck to be at speed when the clip begins.
constexpr platform::Duration kPrerollRewind = std::chrono::seconds(4);
constexpr platform::Duration kRestartPause = std::chrono::seconds(1);

constexpr long kPrerollSpeed = -10000;

}  // namespace

void ZQACRecaptureController::stopPlaying() {
  const std::lock_guard guard(lock_);
  if (!controllableDevice()) return;
  transport_.stop();
  currentDeviceAction_ = DeviceAction::nothing;
}

void ZQACRecaptureController::setDevicePlaying(bool playing) {
  if (playing) {
    transport_.play();
  } else {
    transport_.pause();
  }
  session_->startRunning();
}

DeviceAction ZQACRecaptureController::deviceNextAction() const {
  const std::lock_guard guard(lock_);
  return zq::deviceNextAction(currentDateOnClip_, clipToBeRecaptured_);
}

// A deck that is told the same for every frame would never come to do it.
void ZQACRecaptureController::toDoDeviceNextAction() {
  const std::lock_guard guard(lock_);
  const DeviceAction action = deviceNextAction();
  if (action == currentDeviceAction_) return;
  currentDeviceAction_ = action;
  perform(action);
}

void ZQACRecaptureController::perform(DeviceAction action) {
  switch (action) {
    case DeviceAction::nothing:
      return;
    case DeviceAction::play:
      if (!isDevicePlaying()) setDevicePlaying(true);
      return;
    case DeviceAction::stop:
      return stopPlaying();
    case DeviceAction::pause:
      return setDevicePlaying(false);
    case DeviceAction::forward:
      if (!isDeviceFastforwarding()) setDeviceFastForwarding(true);
      return;
    case DeviceAction::stopThenForward:
      stopPlaying();
      return setDeviceFastForwarding(true);
    case DeviceAction::back:
      if (!isDeviceRewinding()) setDeviceRewinding(true);
      return;
    case DeviceAction::stopThenBack:
      stopPlaying();
      return setDeviceRewinding(true);
  }
  setDevicePlaying(true);
}

void ZQACRecaptureController::tinyAdjustToBeginning() {
  const std::lock_guard guard(lock_);
  if (!controllableDevice() || isDeviceFastforwarding()) return;
  setProcessNote(note::kAdjusting);
  const TimecodeValue start = currentClip_ ? currentClip_->timecodeStartClip() : nullptr;
  const int timebase = currentClip_ ? currentClip_->timebase() : 0;
  const int behind = framesFromTo(start, valueWithSMPTETime(currentTimecode_), timebase);
  if (const auto speed = speedToBeginning(behind)) setDeviceRewindingInSpeed(*speed);
}

void ZQACRecaptureController::slowDown() {
  const std::lock_guard guard(lock_);
  if (!controllableDevice() || !currentClip_) return;
  const int left =
      framesFromTo(valueWithSMPTETime(currentTimecode_), currentClip_->timecodeEndClip(), currentClip_->timebase());
  if (isNearEnd(left)) setDeviceForwardingInSpeed(kSpeedPlay);
}

void ZQACRecaptureController::seeking() {
  const std::lock_guard guard(lock_);
  stopPlaying();
  setDeviceFastForwarding(true);
  lock_.releaseWhile([this] { runtime_.clock().sleepFor(kJump); });
  setDevicePlaying(true);
  setProcessNote(note::kSearching);
}

void ZQACRecaptureController::setIsPrerolling(bool prerolling) {
  const std::lock_guard guard(lock_);
  isPrerolling_ = prerolling;
  if (!prerolling || !controllableDevice()) return;
  setDeviceRewindingInSpeed(kPrerollSpeed);
  lock_.releaseWhile([this] { runtime_.clock().sleepFor(kPrerollRewind); });
}

void ZQACRecaptureController::restartSession() {
  runtime_.clock().sleepFor(kRestartPause);
  session_->stopRunning();
  session_->startRunning();
}

}  // namespace zq
