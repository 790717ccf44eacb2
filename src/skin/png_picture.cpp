#include <QBuffer>
#include <QImageReader>
#include <array>
#include <memory>
#include <string>

#include "skin/skin_picture.h"

namespace zq {
namespace {

class PngPicture : public SkinPicture {
 public:
  PngPicture(const QImage& single, const QImage& twofold) : variants_{single, twofold} {}

  QSizeF size() const override {
    const auto& [single, twofold] = variants_;
    return single.isNull() ? QSizeF(twofold.size()) / 2 : QSizeF(single.size());
  }

  QImage rendered(QSize pixels) const override {
    return bestFor(pixels).scaled(pixels, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
  }

 private:
  /// The smallest variant that need not be enlarged, or else the largest.
  const QImage& bestFor(QSize pixels) const {
    const auto& [single, twofold] = variants_;
    if (twofold.isNull()) return single;
    const bool isEnough = pixels.width() <= single.width() && pixels.height() <= single.height();
    return isEnough && !single.isNull() ? single : twofold;
  }

  std::array<QImage, 2> variants_;
};

Error pngError(std::string reason) {
  return Error{"", std::move(reason)};
}

}  // namespace

Expected<QImage> pngPixels(const QByteArray& file) {
  QBuffer buffer;
  buffer.setData(file);
  buffer.open(QIODevice::ReadOnly);
  QImageReader reader(&buffer, "png");
  // Before the pixels are read: a small file can ask for gigabytes.
  const QSize size = reader.size();
  if (!reader.canRead() || size.isEmpty()) return pngError("it is not a PNG picture");
  if (size.width() > kLongestSkinPictureSide || size.height() > kLongestSkinPictureSide) {
    return pngError("it is larger than " + std::to_string(kLongestSkinPictureSide) + " pixels");
  }
  QImage image;
  if (!reader.read(&image)) return pngError("it is damaged: " + reader.errorString().toStdString());
  image.convertTo(QImage::Format_ARGB32_Premultiplied);
  image.setDevicePixelRatio(1);
  return image;
}

SkinPictureHandle pngSkinPicture(const QImage& single, const QImage& twofold) {
  return std::make_shared<PngPicture>(single, twofold);
}

}  // namespace zq
