#include "skin/three_slices.h"

namespace zq {

ThreeSlices::ThreeSlices(const char* left, const char* middle, const char* right, const char* className)
    : left_(imageNamedInFrameworkForClass(left, className)),
      middle_(imageNamedInFrameworkForClass(middle, className)),
      right_(imageNamedInFrameworkForClass(right, className)) {}

void ThreeSlices::drawStretched(QPainter& painter, const QRectF& rect, qreal leftWidth, qreal rightWidth,
                                qreal opacity) const {
  const qreal between = rect.width() - leftWidth - rightWidth;
  left_.draw(painter, {rect.x(), rect.y(), leftWidth, rect.height()}, opacity);
  middle_.draw(painter, {rect.x() + leftWidth, rect.y(), between, rect.height()}, opacity);
  right_.draw(painter, {rect.x() + rect.width() - rightWidth, rect.y(), rightWidth, rect.height()}, opacity);
}

}  // namespace zq
