#pragma once
// The band between the timeline and the strip, which joins each clip's place in the one to its picture in the other.

#include "catalogue/clip.h"
#include "catalogue/sequence.h"

namespace zq::outlets {

/// From any thread. Null is for none.
class BindingArea {
 public:
  virtual ~BindingArea() = default;
  virtual void setActiveSequence(SequenceValue sequence) = 0;
  /// Draws nothing anew: the strip's refresh() does.
  virtual void setActiveClip(ClipValue clip) = 0;
  /// Draws anew, as soon as the main thread is free.
  virtual void refresh() = 0;
};

}  // namespace zq::outlets
