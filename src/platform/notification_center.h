#pragma once
// Announcements by name, on the main thread.

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/settings.h"

namespace zq::platform {

inline constexpr char QTCaptureDeviceAttributeWillChangeNotification[] = "QTCaptureDeviceAttributeWillChange";
inline constexpr char QTCaptureDeviceAttributeDidChangeNotification[] = "QTCaptureDeviceAttributeDidChange";
inline constexpr char QTCaptureDeviceWasConnectedNotification[] = "QTCaptureDeviceWasConnected";
inline constexpr char QTCaptureDeviceWasDisconnectedNotification[] = "QTCaptureDeviceWasDisconnected";
inline constexpr char QTCaptureDeviceAVCTransportControlsAttribute[] = "AVCTransportControls";

/// Who changed what: the sender's identity and the attribute named by the changed-attribute key of the user info.
struct Notification {
  std::string name;
  const void* object = nullptr;
  std::string changedAttribute;
};

class NotificationCenter {
 public:
  using Observer = std::function<void(const Notification&)>;

  /// Until the returned handle goes.
  Observation addObserver(std::string name, Observer observer);
  /// Calls the observers of this name in the order in which they were added.
  void post(const Notification& notification);

 private:
  struct Entry {
    std::string name;
    Observer observer;
  };
  std::vector<std::weak_ptr<Entry>> entries_;
};

}  // namespace zq::platform
