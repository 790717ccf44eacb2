#pragma once
// One picture of a skin, read from a file's bytes, and what it looks like at a given number of pixels.

#include <QByteArray>
#include <QImage>
#include <QSize>
#include <QSizeF>
#include <memory>

#include "base/status.h"

namespace zq {

class SkinPicture {
 public:
  virtual ~SkinPicture() = default;
  SkinPicture(const SkinPicture&) = delete;
  SkinPicture& operator=(const SkinPicture&) = delete;

  /// Its own size, in points.
  virtual QSizeF size() const = 0;
  /// The whole picture in exactly `pixels` (both sides at least 1), its proportions given up when they differ;
  /// premultiplied, at device pixel ratio 1.
  virtual QImage rendered(QSize pixels) const = 0;

 protected:
  SkinPicture() = default;
};

using SkinPictureHandle = std::shared_ptr<const SkinPicture>;

/// The longest side of a picture's own size, in points or pixels.
inline constexpr int kLongestSkinPictureSide = 8192;

/// The picture of an SVG document. Its size is that of its root element: width and height, or else the viewBox.
/// An error's message is left empty: the caller knows the file.
Expected<SkinPictureHandle> svgSkinPicture(const QByteArray& document);

/// The picture of PNG files: `single` has a pixel a point, `twofold` two; one of them may be null.
SkinPictureHandle pngSkinPicture(const QImage& single, const QImage& twofold);
/// The pixels of a PNG file. An error's message is left empty.
Expected<QImage> pngPixels(const QByteArray& file);

}  // namespace zq
