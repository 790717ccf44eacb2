#pragma once
// The strip that shows the pictures of a sequence's clips.

#include "catalogue/clip.h"
#include "catalogue/sequence.h"
#include "timecode/smpte_time.h"

namespace zq::outlets {

class BindingArea;

/// From any thread, but for setBindingAreaView() and what moves the strip, which are the main thread's. Null is for
/// none.
class ThumbnailStrip {
 public:
  virtual ~ThumbnailStrip() = default;
  virtual void setBindingAreaView(BindingArea* view) = 0;
  virtual void setActiveSequence(SequenceValue sequence) = 0;
  virtual void setActiveClip(ClipValue clip) = 0;
  virtual void setClipBeingRecap(ClipValue clip) = 0;
  /// The timecode of the frame that is played, for the progress of the clip being recaptured.
  virtual void setCursorTimecode(const SMPTETime& timecode) = 0;
  /// Whether the edges roll the strip when the pointer rests on them.
  virtual void setIsMouseDownActive(bool active) = 0;
  /// Glides, within a second, to where the active clip's picture stands in the middle. `offset`: how far to the right
  /// of the middle its centre is now, in points.
  virtual void triggerRelocationTimerWithOffset(float offset) = 0;
  /// Puts a strip of so many pictures in the middle, or at its start when it is wider than the view.
  virtual void findFirstPosterImagePosWithClipCount(int clipCount) = 0;
};

}  // namespace zq::outlets
