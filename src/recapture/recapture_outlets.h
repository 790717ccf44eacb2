#pragma once
// What the recapture controller talks to on screen. Each may be null; none is owned.

#include "outlets/binding_area.h"
#include "outlets/button.h"
#include "outlets/capture_view.h"
#include "outlets/open_panel.h"
#include "outlets/overlay.h"
#include "outlets/panel.h"
#include "outlets/pop_up.h"
#include "outlets/sheet.h"
#include "outlets/text_field.h"
#include "outlets/thumbnail_strip.h"
#include "outlets/timeline.h"

namespace zq {

struct RecaptureOutlets {
  outlets::CaptureView* recaptureView = nullptr;
  outlets::Panel* optionsView = nullptr;
  outlets::Panel* controlView = nullptr;
  outlets::Panel* changePathBox = nullptr;
  outlets::Button* recordButton = nullptr;
  outlets::Panel* configurationView = nullptr;
  outlets::Timeline* timelineView = nullptr;
  outlets::ThumbnailStrip* thumbnailView = nullptr;
  outlets::BindingArea* bindingAreaView = nullptr;
  outlets::Sheet* optionsWindow = nullptr;
  outlets::PopUp* compressionOptionsPopup = nullptr;
  outlets::Button* customChangeButton = nullptr;
  /// Asks where movies go.
  outlets::OpenPanel* pathPanel = nullptr;
  outlets::TimecodeOverlay* timecodeView = nullptr;
  /// The band over the picture that says what goes on.
  outlets::Panel* messageLayout = nullptr;
  outlets::TextField* messageText = nullptr;
};

}  // namespace zq
