#pragma once
// A part of a view that notices the pointer coming and going.

#include "platform/geometry.h"
#include "views/view_coordinates.h"

namespace zq {

/// Notices nothing before it is installed.
class TrackingArea {
 public:
  enum class Event { kNone, kEntered, kExited };

  const platform::Rect& rect() const { return rect_; }
  /// A pointer that rests is in or out of the new place when it moves next.
  void setRect(const platform::Rect& rect) { rect_ = rect; }
  bool isInstalled() const { return isInstalled_; }
  void install() { isInstalled_ = true; }

  /// The pointer is at this point of the view, from the lower left.
  Event pointerMoved(float x, float y) { return pointerIsInside(contains(rect_, x, y)); }
  /// It is outside the view.
  Event pointerLeft() { return pointerIsInside(false); }

 private:
  Event pointerIsInside(bool inside) {
    if (!isInstalled_ || inside == isPointerInside_) return Event::kNone;
    isPointerInside_ = inside;
    return inside ? Event::kEntered : Event::kExited;
  }

  platform::Rect rect_;
  bool isInstalled_ = false;
  bool isPointerInside_ = false;
};

}  // namespace zq
