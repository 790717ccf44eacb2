#pragma once
// What lies in the timeline's track, composed in one row of pixels: all of it is as high as the track.

#include <QColor>
#include <QRectF>
#include <array>
#include <vector>

class QPainter;

namespace zq {

/// A tape may have ten thousand clips, most of them narrower than a pixel. A row takes their fills some twenty times as
/// fast as a painter does, with the same blending at fractional edges.
class TrackRow {
 public:
  /// From x = 0 on, in points; `scale` device pixels each.
  TrackRow(float width, double scale);

  /// An opaque colour from `left` to `right`, over what is there.
  void fill(double left, double right, const QColor& color);
  /// Draws the row from the left of `target` on, as high as that. The last of its pixels may reach beyond the right, so
  /// that each of them is one of the device's.
  void draw(QPainter& painter, const QRectF& target) const;

 private:
  using Pixel = std::array<float, 4>;  // Red, green, blue, times alpha, and alpha.

  const double scale_;
  std::vector<Pixel> pixels_;
};

}  // namespace zq
