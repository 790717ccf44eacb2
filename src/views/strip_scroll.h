#pragma once
// How far the thumbnail strip is scrolled: where its first poster stands, in points from the view's left edge.

#include <cstddef>
#include <cstdint>

namespace zq {

/// What a strip of so many posters does in a view of this width. In 32-bit floats, so that every step of an animation
/// is the same on every machine.
class StripScroll {
 public:
  static constexpr float kRollingStep = 5;

  StripScroll(float viewWidth, std::size_t clipCount);

  float fullWidth() const { return fullWidth_; }
  /// Whether it is wider than the view.
  bool overflows() const { return fullWidth_ > viewWidth_; }
  /// In the middle of the view, or at its start when the strip is not narrower than the view.
  float centred() const;
  /// With poster number `index` this far to the right of the view's middle, as far as there is no gap at an end. A
  /// strip that is narrower than the view is put at its right.
  float withPosterAt(std::int32_t index, float offsetFromMiddle) const;
  /// Whether another step of rolling follows. Intended: the last one may pass the end of the strip by less than its
  /// length.
  bool canRollToLeft(float position) const { return position > viewWidth_ - fullWidth_; }
  bool canRollToRight(float position) const { return position < 0; }
  /// Without a gap at an end; for strips that overflow.
  float withinEnds(float position) const;

 private:
  const float viewWidth_;
  const float fullWidth_;
};

/// How far a glide still has to go after a tick, `elapsed` seconds after its start, that went to `offset`. The factor
/// is applied to what earlier ticks left, so it ends within a second.
float nextGlideOffset(float offset, double elapsed);

}  // namespace zq
