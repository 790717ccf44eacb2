#include "views/pixel_grid.h"

#include <QPainter>
#include <QPointF>
#include <algorithm>
#include <cmath>

namespace zq {
namespace {

constexpr qreal kFewest = 1.0 / 8;
constexpr qreal kMost = 16;

// std::round() goes away from 0 on both sides: a poster that begins at -0.5 would be wider than the others.
qreal nearest(qreal pixel) {
  return std::floor(pixel + 0.5);
}

}  // namespace

qreal pixelsPerPoint(const QPainter& painter) {
  const QTransform toPixels = painter.deviceTransform();
  const qreal pixels = std::hypot(toPixels.m11(), toPixels.m12());
  return std::isfinite(pixels) ? std::clamp(pixels, kFewest, kMost) : 1;
}

PixelGrid::PixelGrid(const QPainter& painter) : toPixels_(painter.deviceTransform()), toPoints_(toPixels_.inverted()) {}

QRectF PixelGrid::snapped(const QRectF& rect) const {
  const QRectF pixels = toPixels_.mapRect(rect);
  const QPointF corner(nearest(pixels.left()), nearest(pixels.top()));
  const QPointF opposite(nearest(pixels.right()), nearest(pixels.bottom()));
  return toPoints_.mapRect(QRectF(corner, opposite));
}

}  // namespace zq
