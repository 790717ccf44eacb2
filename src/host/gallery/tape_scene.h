#pragma once
// The three views of a tape together, as in the recapture window, with a tape in them.

#include <memory>

#include "base/status.h"
#include "catalogue/tape.h"
#include "interface/interface.h"
#include "views/binding_area_view.h"
#include "views/thumbnail_view.h"
#include "views/timeline_view.h"

namespace zq::host {

class TapeScene {
 public:
  /// Shows nothing yet.
  static Expected<std::unique_ptr<TapeScene>> make(platform::Runtime& runtime);

  void show(const TapeValue& tape);
  /// As a click on the clip does.
  void pick(const SequenceValue& sequence, const ClipValue& clip);
  /// As the deck does while it plays this frame of the clip; a clip that is being recaptured shows how far it is.
  void play(const ClipValue& clip, int frame, bool recaptures);

  QWidget& widget() { return interface_->root(); }
  ZQACTimelineView& timeline() { return *timeline_; }
  ZQACThumbnailView& strip() { return *strip_; }

 private:
  TapeScene(std::unique_ptr<Interface> interface, ZQACTimelineView& timeline, ZQACBindingAreaView& band,
            ZQACThumbnailView& strip);

  const std::unique_ptr<Interface> interface_;
  ZQACTimelineView* const timeline_;
  ZQACThumbnailView* const strip_;
};

}  // namespace zq::host
