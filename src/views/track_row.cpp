#include "views/track_row.h"

#include <QImage>
#include <QPainter>
#include <algorithm>
#include <cmath>

namespace zq {
namespace {

int byteOf(float part) {
  return static_cast<int>(std::lround(std::clamp(part, 0.0F, 1.0F) * 255));
}

}  // namespace

TrackRow::TrackRow(float width, double scale)
    : scale_(scale), pixels_(static_cast<std::size_t>(std::max(0.0, std::ceil(width * scale))), Pixel{}) {}

void TrackRow::fill(double left, double right, const QColor& color) {
  const double begin = std::max(0.0, left * scale_);
  const double end = std::min(static_cast<double>(pixels_.size()), right * scale_);
  if (!(begin < end)) return;
  const Pixel ink{color.redF(), color.greenF(), color.blueF(), 1};
  const auto last = static_cast<std::size_t>(std::ceil(end));
  for (auto i = static_cast<std::size_t>(begin); i < last; ++i) {
    const auto x = static_cast<double>(i);
    const auto covered = static_cast<float>(std::min(end, x + 1) - std::max(begin, x));
    for (std::size_t part = 0; part < ink.size(); ++part) {
      pixels_[i][part] += (ink[part] - pixels_[i][part]) * covered;
    }
  }
}

void TrackRow::draw(QPainter& painter, const QRectF& target) const {
  if (pixels_.empty() || target.height() <= 0) return;
  QImage row(static_cast<int>(pixels_.size()), 1, QImage::Format_ARGB32_Premultiplied);
  auto* out = reinterpret_cast<QRgb*>(row.scanLine(0));
  for (const Pixel& pixel : pixels_) {
    *out++ = qRgba(byteOf(pixel[0]), byteOf(pixel[1]), byteOf(pixel[2]), byteOf(pixel[3]));
  }
  painter.drawImage(QRectF(target.left(), target.top(), row.width() / scale_, target.height()), row);
}

}  // namespace zq
