#pragma once
// The one device that feeds the session: checked to be DV, opened, and joined to the session.

#include <functional>
#include <memory>

#include "platform/alerts.h"
#include "platform/capture_session.h"
#include "platform/runtime.h"
#include "platform/strings.h"

namespace zq {

/// Main thread only, but for the two queries.
class DeviceSelection {
 public:
  DeviceSelection(platform::Runtime& runtime, platform::CapturePlatform& capture, platform::QTCaptureSession& session,
                  platform::Alerts& alerts, const platform::Strings& strings);

  /// Takes the held device out of the session and closes it.
  void release();
  /// Alerts once for each format of the device that is not DV, opens it all the same, and adds it to the session.
  /// False, with an alert and without a device, when it cannot be opened or added. `joined` is called when it was given
  /// to the session, also when the session then turned it down.
  bool select(const std::shared_ptr<platform::QTCaptureDevice>& device, const std::function<void()>& joined = {});

  std::shared_ptr<platform::QTCaptureDeviceInput> input() const;
  std::shared_ptr<platform::QTCaptureDevice> selectedDevice() const;

 private:
  std::shared_ptr<platform::QTCaptureDeviceInput> exchangeInput(std::shared_ptr<platform::QTCaptureDeviceInput> input);
  void alertFormatsThatAreNotDV(const platform::QTCaptureDevice& device);

  // Constant after construction.
  platform::CapturePlatform& capture_;
  platform::QTCaptureSession& session_;
  platform::Alerts& alerts_;
  const platform::Strings& strings_;
  const std::unique_ptr<platform::Mutex> mutex_;

  // Guarded by mutex_.
  std::shared_ptr<platform::QTCaptureDeviceInput> input_;
};

/// Whether a device's format is one of the DV kinds.
bool isDVFormat(platform::FourCharCode formatType);

}  // namespace zq
