#pragma once
// How the thumbnail strip is laid out and drawn. Coordinates have their origin at the lower left corner.

#include <QColor>
#include <QPointF>
#include <QRectF>
#include <array>
#include <utility>

#include "catalogue/clip.h"
#include "platform/geometry.h"
#include "views/pixel_grid.h"
#include "views/poster_cache.h"
#include "views/progress_bar.h"
#include "views/thumbnail_strip_state.h"

class QPainter;

namespace zq {

/// One drawing, on the main thread. It stores on every clip before the first one in the trash where its poster and its
/// progress bar are, visible or not: the binding area reads it.
class ThumbnailDrawing {
 public:
  /// The painter's origin is the upper left corner of the view.
  ThumbnailDrawing(QPainter& painter, PosterCache& posters, ThumbnailStripState state);

  void drawRect(const platform::Rect& area);

 private:
  void drawClips(const platform::Rect& area);
  void drawPoster(const ZQACClip& clip, const platform::Rect& place);
  void frameActiveClip();
  void drawEdgeBands(const platform::Rect& area);
  void drawLeftArrow();
  void drawRightArrow();
  void fillTriangle(const std::array<QPointF, 3>& corners);
  void fill(const platform::Rect& rect, const QColor& color);
  void strokeWithoutAntialiasing(const platform::Rect& rect, const QColor& color);
  QRectF onWholePixels(const platform::Rect& rect) const;
  QPointF point(float x, float y) const;

  QPainter& painter_;
  PosterCache& posters_;
  const ThumbnailStripState state_;
  const ProgressBarDrawing progressBars_;
  const PixelGrid pixels_;
  /// Device pixels a point.
  const qreal scale_;
  const QColor bandColor_;
  bool strokedWithoutAntialiasing_ = false;
};

}  // namespace zq
