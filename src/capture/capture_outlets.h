#pragma once
// What the capture controller talks to on screen. Each may be null; none is owned.

#include "outlets/button.h"
#include "outlets/capture_view.h"
#include "outlets/overlay.h"
#include "outlets/panel.h"
#include "outlets/pop_up.h"

namespace zq {

struct CaptureOutlets {
  outlets::CaptureView* captureView = nullptr;
  outlets::TimecodeOverlay* timecodeView = nullptr;
  outlets::Panel* configurationView = nullptr;
  outlets::PopUp* configurationPopUp = nullptr;
  outlets::Panel* devicesView = nullptr;
  outlets::Panel* compressionView = nullptr;
  outlets::PopUp* compressionPopUp = nullptr;
  outlets::PopUp* sizePopUp = nullptr;
  outlets::Panel* thumbnailsView = nullptr;
  outlets::Panel* controlView = nullptr;
  outlets::Button* rewindButton = nullptr;
  outlets::Button* playButton = nullptr;
  outlets::Button* recordButton = nullptr;
  outlets::Button* forwardButton = nullptr;
  outlets::PopUp* afterRecordPopUp = nullptr;
};

}  // namespace zq
