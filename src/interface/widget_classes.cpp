#include "interface/widget_classes.h"

#include <map>

#include "controls/background_view.h"
#include "controls/check_box.h"
#include "controls/control_panel_button.h"
#include "controls/message_text_view.h"
#include "controls/popup_button.h"
#include "controls/separator_barre.h"
#include "controls/shadow_box.h"
#include "controls/slider.h"
#include "controls/text_field.h"
#include "controls/univ_button.h"
#include "views/binding_area_view.h"
#include "views/thumbnail_view.h"
#include "views/timecode_and_date_view.h"
#include "views/timeline_view.h"

namespace zq {

namespace {

using Make = QWidget* (*)(platform::Runtime&, QWidget*);

// Qt deletes a widget with its parent.
template <class Control>
QWidget* makeControl(platform::Runtime& /*runtime*/, QWidget* parent) {
  return new Control(parent);
}

template <class View>
QWidget* makeView(platform::Runtime& runtime, QWidget* parent) {
  return new View(runtime, parent);
}

const std::map<QString, Make>& classes() {
  static const std::map<QString, Make> table = {
      {"ZQACBindingAreaView", makeView<ZQACBindingAreaView>},
      {"ZQACThumbnailView", makeView<ZQACThumbnailView>},
      {"ZQACTimelineView", makeView<ZQACTimelineView>},
      {"ZQAccurateControlPanelButton", makeControl<ZQAccurateControlPanelButton>},
      {"ZQAccurateMessageTextView", makeControl<ZQAccurateMessageTextView>},
      {"ZQAccuratePopupButton", makeControl<ZQAccuratePopupButton>},
      {"ZQAccurateShadowBox", makeControl<ZQAccurateShadowBox>},
      {"ZQAccurateSlider", makeControl<ZQAccurateSlider>},
      {"ZQAccurateTextField", makeControl<ZQAccurateTextField>},
      {"ZQCaptureBackgroundView", makeControl<ZQCaptureBackgroundView>},
      {"ZQCaptureCheckBox", makeControl<ZQCaptureCheckBox>},
      {"ZQCaptureUnivButton", makeControl<ZQCaptureUnivButton>},
      {"ZQRecaptureSeparatorBarre", makeControl<ZQRecaptureSeparatorBarre>},
      {"ZQTimecodeAndDateView", makeView<ZQTimecodeAndDateView>},
  };
  return table;
}

}  // namespace

QWidget* makeWidget(const QString& className, platform::Runtime& runtime, QWidget* parent) {
  const auto found = classes().find(className);
  return found == classes().end() ? nullptr : found->second(runtime, parent);
}

QStringList widgetClasses() {
  QStringList names;
  for (const auto& [name, make] : classes()) names.append(name);
  return names;
}

}  // namespace zq
