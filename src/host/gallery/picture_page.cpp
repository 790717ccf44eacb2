#include "host/gallery/picture_page.h"

#include <QPainter>
#include <QWidget>
#include <algorithm>

namespace zq::host {

namespace {

constexpr QColor kPage(54, 54, 54);
constexpr qreal kMargin = 16;
constexpr qreal kCaption = 22;

QSizeF pointsOf(const QImage& image) {
  return QSizeF(image.size()) / image.devicePixelRatio();
}

QImage emptyImage(QSizeF points, qreal scale) {
  QImage image((points * scale).toSize(), QImage::Format_RGB32);
  image.setDevicePixelRatio(scale);
  image.fill(kPage);
  return image;
}

}  // namespace

QImage pictureOf(QWidget& widget, qreal scale) {
  QImage image = emptyImage(widget.size(), scale);
  widget.render(&image);
  return image;
}

QImage PicturePage::composed() const {
  QSizeF size(0, kMargin);
  for (const Picture& picture : pictures_) {
    const QSizeF points = pointsOf(picture.image);
    size.setWidth(std::max(size.width(), points.width() + 2 * kMargin));
    size.rheight() += kCaption + points.height() + kMargin;
  }
  QImage page = emptyImage(size, scale_);
  QPainter painter(&page);
  QFont font;
  font.setPixelSize(12);
  painter.setFont(font);
  painter.setPen(QColor(190, 190, 190));
  qreal y = kMargin;
  for (const Picture& picture : pictures_) {
    painter.drawText(QPointF(kMargin, y + 13), picture.caption);
    painter.drawImage(QPointF(kMargin, y + kCaption), picture.image);
    y += kCaption + pointsOf(picture.image).height() + kMargin;
  }
  return page;
}

}  // namespace zq::host
