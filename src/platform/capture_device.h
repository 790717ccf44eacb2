#pragma once
// A camcorder or deck.

#include <optional>
#include <string>
#include <vector>

#include "base/shared_bytes.h"
#include "base/status.h"
#include "platform/sample_buffer.h"

namespace zq::platform {

/// The AV/C transport attribute: playback mode 1 is playing, 0 is not; speed is in thousandths of a tenth of normal
/// speed, so that 10000 is normal and the sign is the direction.
struct AVCTransportControls {
  unsigned long playbackMode = 0;
  long speed = 0;

  bool operator==(const AVCTransportControls&) const = default;
};

/// Takes what a device plays, on the device's own delivery thread.
class FrameSink {
 public:
  virtual ~FrameSink() = default;
  virtual void deliverFrame(const QTFormatDescription& format, const SharedBytes& frame) = 0;
  /// The device cannot go on: a lost cable, an unreadable tape image.
  virtual void deliveryFailed(const Error& error) = 0;
};

class QTCaptureDevice {
 public:
  virtual ~QTCaptureDevice() = default;

  virtual std::string uniqueID() const = 0;
  virtual std::string localizedDisplayName() const = 0;
  virtual std::vector<QTFormatDescription> formatDescriptions() const = 0;

  /// Between open() and close() the device is this program's.
  virtual Status open() = 0;
  virtual void close() = 0;
  virtual bool isOpen() const = 0;

  /// The transport attribute; nothing when the device has none. From any thread.
  virtual std::optional<AVCTransportControls> avcTransportControls() const = 0;
  virtual bool avcTransportControlsReadOnly() const = 0;
  /// Commands the transport. The attribute follows when the device obeys; both notifications go around that change.
  virtual void setAVCTransportControls(const AVCTransportControls& controls) = 0;

  /// From now on frames go to `sink`, until stopStreaming(). Neither waits for the delivery thread.
  virtual void startStreaming(FrameSink& sink) = 0;
  virtual void stopStreaming() = 0;
  /// After stopStreaming(): returns when no delivery is under way any more. Not from the delivery thread.
  virtual void waitForDelivery() = 0;
  /// Whether delivery may be held up without losing frames, as a tape image allows and a playing deck does not.
  virtual bool canWait() const = 0;
};

}  // namespace zq::platform
