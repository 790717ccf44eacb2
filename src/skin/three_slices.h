#pragma once
// A frame of three pictures: two ends, and what lies between them.

#include <QRectF>

#include "skin/skin_image.h"

namespace zq {

/// Main thread only.
class ThreeSlices {
 public:
  /// The names of the pictures; a missing one is told with `className`.
  ThreeSlices(const char* left, const char* middle, const char* right, const char* className);

  const SkinImage& left() const { return left_; }
  const SkinImage& middle() const { return middle_; }
  const SkinImage& right() const { return right_; }

  /// Each as high as `rect`, the ends as wide as given, from left to right: where they overlap, the right end is on
  /// top.
  void drawStretched(QPainter& painter, const QRectF& rect, qreal leftWidth, qreal rightWidth,
                     qreal opacity = 1.0) const;

 private:
  SkinImage left_;
  SkinImage middle_;
  SkinImage right_;
};

}  // namespace zq
