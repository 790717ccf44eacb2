#pragma once
// Where the pixels of a screen lie between the points of a view: one to each, two, or one and a quarter.

#include <QRectF>
#include <QTransform>

class QPainter;

namespace zq {

/// How many device pixels a point is wide under the painter's transform; no less than an eighth and no more than 16.
qreal pixelsPerPoint(const QPainter& painter);

/// The device's pixels as a painter stands when this is made. For transforms that move and scale.
class PixelGrid {
 public:
  explicit PixelGrid(const QPainter& painter);

  /// The rectangle with each edge moved to the nearest edge between pixels, the higher one of two. What is drawn into
  /// it has no half tones at its edges, and rectangles that shared an edge still do: no ground shows between them.
  QRectF snapped(const QRectF& rect) const;

 private:
  const QTransform toPixels_;
  const QTransform toPoints_;
};

}  // namespace zq
