#include "skin/skin_image.h"

#include <QImage>
#include <QPainter>
#include <QTransform>
#include <QtNumeric>
#include <algorithm>
#include <cmath>

#include "skin/skin.h"

namespace zq {
namespace {

/// What is rendered of one picture at most: 32 MB. A larger target is drawn from fewer pixels.
constexpr qreal kLongestSide = 8192;
constexpr qreal kMostPixels = 8 << 20;

bool isDrawable(const QRectF& target) {
  return qIsFinite(target.x()) && qIsFinite(target.y()) && qIsFinite(target.width()) && qIsFinite(target.height()) &&
         target.width() > 0 && target.height() > 0;
}

/// A length that is whole but for the rounding of its computation stays as it is.
qreal ceiled(qreal length) {
  return std::max(1.0, std::ceil(length - 1e-4));
}

/// How many device pixels the target covers under the painter's transform.
QSize devicePixels(const QPainter& painter, const QSizeF& target) {
  const QTransform device = painter.deviceTransform();
  const qreal across = target.width() * std::hypot(device.m11(), device.m12());
  const qreal down = target.height() * std::hypot(device.m21(), device.m22());
  const qreal width = ceiled(std::min(across, kLongestSide));
  const qreal height = ceiled(std::min(down, kLongestSide));
  const qreal shrink = std::min(1.0, std::sqrt(kMostPixels / (width * height)));
  return {static_cast<int>(std::max(1.0, width * shrink)), static_cast<int>(std::max(1.0, height * shrink))};
}

}  // namespace

bool SkinImage::isNull() const {
  return name_.isEmpty() || Skin::current().picture(name_) == nullptr;
}

QSizeF SkinImage::size() const {
  const SkinPictureHandle picture = name_.isEmpty() ? nullptr : Skin::current().picture(name_);
  return picture == nullptr ? QSizeF(0, 0) : picture->size();
}

void SkinImage::draw(QPainter& painter, const QRectF& target, qreal opacity) const {
  if (!isDrawable(target) || !(opacity > 0) || isNull()) return;
  const QImage image = Skin::current().rendered(name_, devicePixels(painter, target.size()));
  painter.save();
  painter.setOpacity(painter.opacity() * std::min(opacity, 1.0));
  painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
  painter.setRenderHint(QPainter::SmoothPixmapTransform);
  painter.drawImage(target, image);
  painter.restore();
}

void SkinImage::drawUnscaled(QPainter& painter, const QPointF& corner, qreal opacity) const {
  const QSizeF own = size();
  draw(painter, QRectF(corner - QPointF(0, own.height()), own), opacity);
}

SkinImage imageNamedInFrameworkForClass(const QString& name, const char* className) {
  SkinImage image(name);
  if (image.isNull()) Skin::current().reportMissing(name, className);
  return image;
}

}  // namespace zq
