#pragma once
// The records' coordinates have their origin at the lower left corner of a view, Qt's at the upper left: the one place
// where the one becomes the other.

#include <QPointF>
#include <QRect>
#include <QRectF>
#include <QSize>

#include "platform/geometry.h"

namespace zq {

/// `viewHeight` in points.
inline QRectF toQt(const platform::Rect& rect, float viewHeight) {
  return {rect.x, viewHeight - rect.y - rect.height, rect.width, rect.height};
}

inline QPointF toQt(float x, float y, float viewHeight) {
  return {x, viewHeight - y};
}

inline platform::Rect fromQt(const QRectF& rect, float viewHeight) {
  const auto height = static_cast<float>(rect.height());
  return {static_cast<float>(rect.x()), viewHeight - static_cast<float>(rect.y()) - height,
          static_cast<float>(rect.width()), height};
}

/// How far above the view's lower edge an event at `y` is. It names the upper edge of a row of pixels, and means the
/// middle of it: the uppermost row is inside of the view.
inline float fromQtEvent(qreal y, int viewHeight) {
  return static_cast<float>(viewHeight - y - 0.5);
}

/// Whether the interiors overlap; an empty rectangle meets nothing.
inline bool meets(const platform::Rect& one, const platform::Rect& other) {
  if (one.width <= 0 || one.height <= 0 || other.width <= 0 || other.height <= 0) return false;
  return one.x < other.x + other.width && other.x < one.x + one.width && one.y < other.y + other.height &&
         other.y < one.y + one.height;
}

/// The left and the lower edge belong to a rectangle, the right and the upper do not. `x` and `y` from the lower left.
inline bool contains(const platform::Rect& rect, float x, float y) {
  return x >= rect.x && x < rect.x + rect.width && y >= rect.y && y < rect.y + rect.height;
}

/// The whole points that a rectangle touches in a view of this size; empty where it is outside, or no number.
inline QRect wholePointsInView(const platform::Rect& rect, const QSize& view) {
  const platform::Rect bounds{0, 0, static_cast<float>(view.width()), static_cast<float>(view.height())};
  if (!meets(rect, bounds)) return {};
  return (toQt(rect, bounds.height) & toQt(bounds, bounds.height)).toAlignedRect();
}

inline platform::Rect inset(const platform::Rect& rect, float horizontally, float vertically) {
  return {rect.x + horizontally, rect.y + vertically, rect.width - 2 * horizontally, rect.height - 2 * vertically};
}

}  // namespace zq
