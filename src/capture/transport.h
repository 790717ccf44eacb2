#pragma once
// The transport commands and queries over a device's AV/C attribute.

#include <functional>
#include <memory>

#include "platform/capture_device.h"

namespace zq {

/// Speeds and playback modes of the transport attribute.
inline constexpr long kSpeedPlay = 10000;
inline constexpr long kSpeedWind = 13000;
inline constexpr unsigned long kModeStopped = 0;
inline constexpr unsigned long kModePlaying = 1;

/// Where there is no controllable device, commands send nothing and all queries are false.
class Transport {
 public:
  /// `selectedDevice` answers the device in use, or null.
  explicit Transport(std::function<std::shared_ptr<platform::QTCaptureDevice>()> selectedDevice)
      : selectedDevice_(std::move(selectedDevice)) {}

  /// The selected device if it has the transport attribute and lets it be set; else null.
  std::shared_ptr<platform::QTCaptureDevice> controllableDevice() const;

  void play() const { send(kModePlaying, kSpeedPlay); }
  void pause() const { send(kModePlaying, 0); }
  void stop() const { send(kModeStopped, 0); }
  void playReverse() const { send(kModePlaying, -kSpeedPlay); }
  /// Plays at this speed, backwards where it is negative.
  void playAtSpeed(long speed) const { send(kModePlaying, speed); }
  /// Winding and its end keep the playback mode that the device is in: a playing tape searches, a stopped one winds.
  void setFastForwarding(bool on) const { sendSpeed(on ? kSpeedWind : 0); }
  void setRewinding(bool on) const { sendSpeed(on ? -kSpeedWind : 0); }

  bool isPlaying() const;
  bool isPaused() const;
  /// Slow forward speeds count, normal play does not.
  bool isFastForwarding() const;
  /// Every reverse speed counts, normal reverse play too.
  bool isRewinding() const;

 private:
  std::optional<platform::AVCTransportControls> controls() const;
  void send(unsigned long playbackMode, long speed) const;
  void sendSpeed(long speed) const;

  std::function<std::shared_ptr<platform::QTCaptureDevice>()> selectedDevice_;
};

}  // namespace zq
