#include "capture/transport.h"

#include <algorithm>
#include <array>

namespace zq {

using platform::AVCTransportControls;
using platform::QTCaptureDevice;

namespace {

constexpr std::array<long, 6> kForwardSpeeds{1000, 4000, 7000, 13000, 16000, 19000};
constexpr std::array<long, 7> kReverseSpeeds{-1000, -4000, -7000, -10000, -13000, -16000, -19000};

}  // namespace

std::shared_ptr<QTCaptureDevice> Transport::controllableDevice() const {
  std::shared_ptr<QTCaptureDevice> device = selectedDevice_();
  if (!device || !device->avcTransportControls() || device->avcTransportControlsReadOnly()) return nullptr;
  return device;
}

std::optional<AVCTransportControls> Transport::controls() const {
  const std::shared_ptr<QTCaptureDevice> device = controllableDevice();
  return device ? device->avcTransportControls() : std::nullopt;
}

void Transport::send(unsigned long playbackMode, long speed) const {
  if (const auto device = controllableDevice()) device->setAVCTransportControls({playbackMode, speed});
}

void Transport::sendSpeed(long speed) const {
  if (const auto now = controls()) send(now->playbackMode, speed);
}

bool Transport::isPlaying() const {
  return controls() == AVCTransportControls{kModePlaying, kSpeedPlay};
}

bool Transport::isPaused() const {
  return controls() == AVCTransportControls{kModePlaying, 0};
}

bool Transport::isFastForwarding() const {
  const auto now = controls();
  return now && std::find(kForwardSpeeds.begin(), kForwardSpeeds.end(), now->speed) != kForwardSpeeds.end();
}

bool Transport::isRewinding() const {
  const auto now = controls();
  return now && std::find(kReverseSpeeds.begin(), kReverseSpeeds.end(), now->speed) != kReverseSpeeds.end();
}

}  // namespace zq
