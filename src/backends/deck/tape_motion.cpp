#include "backends/deck/tape_motion.h"

#include <algorithm>
#include <cstdlib>

namespace zq::backend {
namespace {

std::int64_t millispeedOf(const platform::AVCTransportControls& controls, const DeckSpeeds& speeds) {
  const std::int64_t sign = controls.speed < 0 ? -1 : 1;
  const long speed = std::labs(controls.speed);
  if (speed == 0) return 0;
  if (controls.playbackMode == 0) return sign * speeds.wind;
  switch (speed) {
    case 1000:
      return sign * speeds.slow[0];
    case 4000:
      return sign * speeds.slow[1];
    case 7000:
      return sign * speeds.slow[2];
    case 13000:
      return sign * speeds.search[0];
    case 16000:
      return sign * speeds.search[1];
    case 19000:
      return sign * speeds.search[2];
    default:
      return sign * 1000;
  }
}

}  // namespace

void TapeMotion::setControls(const platform::AVCTransportControls& controls) {
  controls_ = controls;
  millispeed_ = millispeedOf(controls, speeds_);
}

std::optional<std::int64_t> TapeMotion::frameUnderHead() const {
  if (isPaused()) return shown_;
  if (millispeed_ >= 0) return milliposition_ / 1000;
  if (milliposition_ <= 0) return std::nullopt;
  return (milliposition_ - 1) / 1000;
}

// A tape that is paused after it played keeps the frame that it showed; after it wound it shows the one that it came
// to.
void TapeMotion::tick() {
  if (const std::optional<std::int64_t> frame = frameUnderHead()) shown_ = *frame;
  milliposition_ = std::max<std::int64_t>(0, milliposition_ + millispeed_);
  if (!showsPicture()) shown_ = milliposition_ / 1000;
}

void TapeMotion::stopAt(std::int64_t frame) {
  setControls({0, 0});
  milliposition_ = frame * 1000;
  shown_ = std::max<std::int64_t>(0, frame - 1);
}

}  // namespace zq::backend
