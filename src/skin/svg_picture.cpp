#include <QPainter>
#include <QRectF>
#include <QStringView>
#include <QSvgRenderer>
#include <QXmlStreamReader>
#include <QtNumeric>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "skin/skin_picture.h"

namespace zq {
namespace {

class SvgPicture : public SkinPicture {
 public:
  SvgPicture(std::unique_ptr<QSvgRenderer> renderer, QSizeF size) : renderer_(std::move(renderer)), size_(size) {}

  QSizeF size() const override { return size_; }

  QImage rendered(QSize pixels) const override {
    QImage image(pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    renderer_->render(&painter, QRectF(QPointF(0, 0), QSizeF(pixels)));
    return image;
  }

 private:
  std::unique_ptr<QSvgRenderer> renderer_;
  QSizeF size_;
};

bool isUsable(const QSizeF& size) {
  return qIsFinite(size.width()) && qIsFinite(size.height()) && size.width() > 0 && size.height() > 0;
}

std::optional<qreal> lengthInPoints(QStringView text) {
  text = text.trimmed();
  if (text.endsWith(u"px") || text.endsWith(u"pt")) text.chop(2);
  bool isNumber = false;
  const qreal length = text.toDouble(&isNumber);
  if (!isNumber) return std::nullopt;  // none, or a percentage of something that a picture does not have
  return length;
}

/// Empty when the text is no viewBox, or one that no drawing is measured in.
QSizeF viewBoxSize(const QString& viewBox) {
  QString text = viewBox;
  const QStringList numbers = text.replace(u',', u' ').simplified().split(u' ');
  if (numbers.size() != 4) return {0, 0};
  const QSizeF size(numbers[2].toDouble(), numbers[3].toDouble());
  const auto isMeasure = [](qreal length) { return length >= 1e-3 && length <= 1e6; };
  return isMeasure(size.width()) && isMeasure(size.height()) ? size : QSizeF(0, 0);
}

QSizeF sizeOf(const QXmlStreamAttributes& root) {
  const auto width = lengthInPoints(root.value(QLatin1String("width")));
  const auto height = lengthInPoints(root.value(QLatin1String("height")));
  if (!root.hasAttribute(QLatin1String("viewBox"))) return width && height ? QSizeF(*width, *height) : QSizeF(0, 0);
  const QSizeF viewBox = viewBoxSize(root.value(QLatin1String("viewBox")).toString());
  return width && height && !viewBox.isEmpty() ? QSizeF(*width, *height) : viewBox;
}

Error svgError(std::string reason) {
  return Error{"", std::move(reason)};
}

/// The size that the document gives itself. Reads it to its end, so that a document cut short is known as one.
Expected<QSizeF> sizeOfDocument(const QByteArray& document) {
  QXmlStreamReader reader(document);
  if (!reader.readNextStartElement()) return svgError("it is not an SVG document");
  if (reader.name() != QLatin1String("svg")) return svgError("it is not an SVG document");
  const QSizeF size = sizeOf(reader.attributes());
  while (!reader.atEnd()) reader.readNext();
  if (reader.hasError()) {
    return svgError("it is damaged at line " + std::to_string(reader.lineNumber()) + ": " +
                    reader.errorString().toStdString());
  }
  if (!isUsable(size)) return svgError("its <svg> has no usable width and height, nor a usable viewBox");
  if (size.width() > kLongestSkinPictureSide || size.height() > kLongestSkinPictureSide) {
    return svgError("it is larger than " + std::to_string(kLongestSkinPictureSide) + " points");
  }
  return size;
}

}  // namespace

Expected<SkinPictureHandle> svgSkinPicture(const QByteArray& document) {
  const auto size = sizeOfDocument(document);
  if (!size.ok()) return size.error();
  auto renderer = std::make_unique<QSvgRenderer>();
  renderer->setFramesPerSecond(0);  // a picture stands still, and no timer may redraw it
  if (!renderer->load(document)) return svgError("it is not an SVG document that can be drawn");
  return SkinPictureHandle(std::make_shared<SvgPicture>(std::move(renderer), size.value()));
}

}  // namespace zq
