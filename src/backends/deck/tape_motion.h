#pragma once
// How the tape moves under the head: a position that each tick of the frame rate carries on by the speed.

#include <cstdint>
#include <optional>

#include "backends/deck/deck_options.h"
#include "platform/capture_device.h"

namespace zq::backend {

class TapeMotion {
 public:
  explicit TapeMotion(const DeckSpeeds& speeds) : speeds_(speeds) {}

  /// Obeys a command from the next tick on.
  void setControls(const platform::AVCTransportControls& controls);
  const platform::AVCTransportControls& controls() const { return controls_; }

  bool isMoving() const { return millispeed_ != 0; }
  bool isPaused() const { return controls_.playbackMode != 0 && millispeed_ == 0; }
  bool isForward() const { return millispeed_ > 0; }
  bool isSearching() const { return controls_.playbackMode != 0 && (millispeed_ > 1000 || millispeed_ < -1000); }
  /// Whether the frames that pass are shown; a winding tape shows none.
  bool showsPicture() const { return controls_.playbackMode != 0; }

  /// The frame under the head, which the next tick shows: going forward the one that begins at the position, going
  /// backwards the one that ends there. Nothing at the beginning of the tape while it goes backwards.
  std::optional<std::int64_t> frameUnderHead() const;
  /// One tick of the frame rate has passed.
  void tick();
  /// The tape has run against one of its ends, before this frame: it stops there.
  void stopAt(std::int64_t frame);

 private:
  // Constant after construction.
  const DeckSpeeds speeds_;

  platform::AVCTransportControls controls_;
  std::int64_t millispeed_ = 0;     // thousandths of normal speed, signed
  std::int64_t milliposition_ = 0;  // thousandths of a frame from the beginning of the tape
  std::int64_t shown_ = 0;          // what a paused tape shows
};

}  // namespace zq::backend
