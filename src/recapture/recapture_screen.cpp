#include "recapture/recapture_screen.h"

#include "platform/capture_session.h"

namespace zq {
namespace {

constexpr platform::Color kMessageBackground{0.306F, 0.38F, 0.467F, 0.5F};

}  // namespace

void RecaptureScreen::connect(platform::QTCaptureSession& session) const {
  if (outlets_.timelineView != nullptr) outlets_.timelineView->setThumbnailView(outlets_.thumbnailView);
  if (outlets_.thumbnailView != nullptr) outlets_.thumbnailView->setBindingAreaView(outlets_.bindingAreaView);
  if (outlets_.recaptureView != nullptr) outlets_.recaptureView->setCaptureSession(&session);
}

void RecaptureScreen::layOut() const {
  if (outlets_.messageText != nullptr) outlets_.messageText->setBackgroundColor(kMessageBackground);
  setOverlayHidden(true);
  if (outlets_.recaptureView != nullptr) {
    if (outlets_.timecodeView != nullptr) outlets_.recaptureView->addOverlayView(*outlets_.timecodeView);
    if (outlets_.messageLayout != nullptr) outlets_.recaptureView->addOverlayView(*outlets_.messageLayout);
  }
  showMessage(false);
}

void RecaptureScreen::disconnect() const {
  if (outlets_.recaptureView == nullptr) return;
  if (outlets_.timecodeView != nullptr) outlets_.recaptureView->removeOverlayView(*outlets_.timecodeView);
  if (outlets_.messageLayout != nullptr) outlets_.recaptureView->removeOverlayView(*outlets_.messageLayout);
  outlets_.recaptureView->setCaptureSession(nullptr);
}

void RecaptureScreen::showMessage(bool shown) const {
  if (outlets_.messageLayout != nullptr) outlets_.messageLayout->setShown(shown);
}

void RecaptureScreen::raiseMessage() const {
  showMessage(true);
  if (outlets_.messageLayout == nullptr || outlets_.recaptureView == nullptr) return;
  outlets_.recaptureView->addOverlayView(*outlets_.messageLayout);
}

void RecaptureScreen::setNote(const std::string& note) const {
  if (outlets_.messageText != nullptr) outlets_.messageText->setStringValue(note);
}

void RecaptureScreen::setOverlayHidden(bool hidden) const {
  if (outlets_.timecodeView != nullptr) outlets_.timecodeView->setHidden(hidden);
}

void RecaptureScreen::setTimecode(const SMPTETime& timecode) const {
  if (outlets_.timecodeView != nullptr) outlets_.timecodeView->setTimecode(timecode);
}

void RecaptureScreen::setDate(const DateValue& date) const {
  if (outlets_.timecodeView != nullptr) outlets_.timecodeView->setDate(date);
}

void RecaptureScreen::switchRecordButtonOff() const {
  if (outlets_.recordButton != nullptr) outlets_.recordButton->setState(false);
}

void RecaptureScreen::showTape(const TapeValue& tape) const {
  if (outlets_.timelineView != nullptr) outlets_.timelineView->refreshWithTape(tape);
  if (outlets_.thumbnailView == nullptr) return;
  const bool anySequence = tape && !tape->allSequences().empty();
  outlets_.thumbnailView->setActiveSequence(anySequence ? tape->sequenceAtIndex(0) : nullptr);
}

void RecaptureScreen::showNothing() const {
  if (outlets_.thumbnailView != nullptr) {
    outlets_.thumbnailView->setActiveSequence(nullptr);
    outlets_.thumbnailView->setActiveClip(nullptr);
  }
  setOverlayHidden(true);
}

void RecaptureScreen::hideCursor() const {
  if (outlets_.timelineView == nullptr) return;
  outlets_.timelineView->setCursorRect({});
  outlets_.timelineView->refresh();
}

void RecaptureScreen::moveCursor(const SMPTETime& timecode, const DateValue& date) const {
  if (outlets_.timelineView == nullptr) return;
  outlets_.timelineView->setCursorTimecode(timecode);
  outlets_.timelineView->setCursorDate(date);
}

void RecaptureScreen::allowPicking(bool allowed) const {
  if (outlets_.timelineView != nullptr) outlets_.timelineView->setIsMouseDownActive(allowed);
}

void RecaptureScreen::showSequence(const SequenceValue& sequence) const {
  if (outlets_.timelineView != nullptr) outlets_.timelineView->setCurrentSequence(sequence);
}

void RecaptureScreen::showClip(const ClipValue& clip) const {
  if (outlets_.timelineView == nullptr) return;
  outlets_.timelineView->setCurrentClip(clip);
  runtime_.mainLoop().post([view = outlets_.timelineView, alive = std::weak_ptr(alive_)] {
    if (!alive.expired()) view->myMethodeWhenClipClicked();
  });
}

void RecaptureScreen::showClipBeingRecaptured(const ClipValue& clip) const {
  if (outlets_.thumbnailView != nullptr) outlets_.thumbnailView->setClipBeingRecap(clip);
}

}  // namespace zq
