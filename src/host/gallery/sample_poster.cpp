#include "host/gallery/sample_poster.h"

#include <QBuffer>
#include <QImage>
#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <random>

namespace zq::host {

namespace {

/// 0 to 1. The standard's own distributions differ from library to library.
double chance(std::minstd_rand& random) {
  return static_cast<double>(random() % 1000) / 1000;
}

void drawSky(QPainter& painter, QSizeF size, int hue) {
  QLinearGradient sky(0, 0, 0, size.height());
  sky.setColorAt(0, QColor::fromHsv(hue, 150, 120));
  sky.setColorAt(1, QColor::fromHsv((hue + 320) % 360, 90, 240));
  painter.fillRect(QRectF(QPointF(), size), sky);
}

void drawHills(QPainter& painter, QSizeF size, int hue, std::minstd_rand& random) {
  for (int hill = 0; hill < 3; ++hill) {
    const auto level = [&] { return size.height() * (0.45 + 0.17 * hill + 0.12 * chance(random)); };
    QPainterPath path(QPointF(0, size.height()));
    path.lineTo(0, level());
    path.cubicTo(size.width() * 0.3, level(), size.width() * 0.6, level(), size.width(), level());
    path.lineTo(size.width(), size.height());
    painter.fillPath(path, QColor::fromHsv((hue + 150) % 360, 110, 130 - 35 * hill));
  }
}

}  // namespace

platform::ImageValue samplePoster(int number, int width) {
  std::minstd_rand random(static_cast<std::uint32_t>(number) + 1);
  const int hue = static_cast<int>(random() % 360);
  const QSizeF size = QSize(width, width * 2 / 3);
  QImage picture(size.toSize(), QImage::Format_RGB32);
  QPainter painter(&picture);
  painter.setRenderHint(QPainter::Antialiasing);
  drawSky(painter, size, hue);
  painter.setPen(Qt::NoPen);
  painter.setBrush(QColor(255, 244, 214));
  const double across = 0.15 + 0.7 * chance(random);
  painter.drawEllipse(QPointF(size.width() * across, size.height() * 0.3), width * 0.06, width * 0.06);
  drawHills(painter, size, hue, random);
  painter.end();

  QByteArray bytes;
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::WriteOnly);
  picture.save(&buffer, "PNG");
  auto image = std::make_shared<platform::Image>();
  image->encoded.assign(bytes.begin(), bytes.end());
  return image;
}

}  // namespace zq::host
