#pragma once
// The outlets of the recapture controller, spoken to whether they are there or not.

#include <memory>
#include <string>

#include "platform/runtime.h"
#include "recapture/recapture_outlets.h"

namespace zq {

/// From any thread, but for the operations of the window's life, which are the main thread's.
class RecaptureScreen {
 public:
  RecaptureScreen(platform::Runtime& runtime, const RecaptureOutlets& outlets) : runtime_(runtime), outlets_(outlets) {}
  RecaptureScreen(const RecaptureScreen&) = delete;
  RecaptureScreen& operator=(const RecaptureScreen&) = delete;

  // The window's life.
  void connect(platform::QTCaptureSession& session) const;
  void layOut() const;
  void disconnect() const;

  void showMessage(bool shown) const;
  /// Shows the message and lays it over the picture.
  void raiseMessage() const;
  void setNote(const std::string& note) const;
  void setOverlayHidden(bool hidden) const;
  void setTimecode(const SMPTETime& timecode) const;
  void setDate(const DateValue& date) const;
  void switchRecordButtonOff() const;

  void showTape(const TapeValue& tape) const;
  void showNothing() const;
  void hideCursor() const;
  void moveCursor(const SMPTETime& timecode, const DateValue& date) const;
  void allowPicking(bool allowed) const;
  void showSequence(const SequenceValue& sequence) const;
  /// Shows the clip in the timeline, and brings its picture into view.
  void showClip(const ClipValue& clip) const;
  void showClipBeingRecaptured(const ClipValue& clip) const;

 private:
  platform::Runtime& runtime_;
  const RecaptureOutlets outlets_;
  /// Goes with the screen, so that what is still posted leaves the outlets alone.
  const std::shared_ptr<int> alive_ = std::make_shared<int>();
};

}  // namespace zq
