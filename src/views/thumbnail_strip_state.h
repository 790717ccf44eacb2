#pragma once
// What the thumbnail strip shows: one value, so that it can be copied under a lock and drawn without one.

#include "catalogue/clip.h"
#include "catalogue/sequence.h"
#include "platform/geometry.h"
#include "timecode/smpte_time.h"
#include "views/strip_scroll.h"
#include "views/tracking_area.h"

namespace zq::outlets {
class BindingArea;
}

namespace zq {

struct ThumbnailStripState {
  outlets::BindingArea* bindingAreaView = nullptr;
  ClipValue activeClip;
  SequenceValue activeSequence;
  /// Of the first poster image; 0 or negative when the strip overflows.
  float firstPosterImagePosX = 0;
  /// The band at the right edge, which rolls the strip to the left, and the other way round.
  TrackingArea rollingToLeftArea;
  TrackingArea rollingToRightArea;
  bool willRollToLeft = false;
  bool willRollToRight = false;
  /// Of the edge band and its arrow, although it is how opaque they are: 0 to 0.8.
  float transparency = 0;
  bool isMouseDownActive = true;
  SMPTETime cursorTimecode;
  ClipValue clipBeingRecap;
  /// The view's.
  platform::Rect bounds;

  void installAreas() {
    rollingToLeftArea.install();
    rollingToRightArea.install();
  }
  StripScroll scroll() const {
    return {bounds.width, activeSequence ? activeSequence->allClips().size() : std::size_t{0}};
  }
};

}  // namespace zq
