#pragma once
// The strip that shows the pictures of a sequence's clips.

#include "catalogue/clip.h"
#include "catalogue/sequence.h"

namespace zq::outlets {

class BindingArea;

/// From any thread, but for setBindingAreaView(), which is the main thread's. Null is for none.
class ThumbnailStrip {
 public:
  virtual ~ThumbnailStrip() = default;
  virtual void setBindingAreaView(BindingArea* view) = 0;
  virtual void setActiveSequence(SequenceValue sequence) = 0;
  virtual void setActiveClip(ClipValue clip) = 0;
  virtual void setClipBeingRecap(ClipValue clip) = 0;
};

}  // namespace zq::outlets
