#pragma once
// Where the live picture is shown.

#include "outlets/overlay.h"
#include "outlets/panel.h"

namespace zq::platform {
class QTCaptureSession;
}

namespace zq::outlets {

/// Main thread only.
class CaptureView {
 public:
  virtual ~CaptureView() = default;
  /// Shows what the session delivers; null for nothing.
  virtual void setCaptureSession(platform::QTCaptureSession* session) = 0;
  /// Lays the overlay above the picture, its origin at the view's and 640 x 480 points large.
  virtual void addOverlayView(TimecodeOverlay& overlay) = 0;
  virtual void removeOverlayView(TimecodeOverlay& overlay) = 0;
  /// Lays the panel above the picture, as large as the view.
  virtual void addOverlayView(Panel& panel) = 0;
  virtual void removeOverlayView(Panel& panel) = 0;
};

}  // namespace zq::outlets
