#pragma once
// A folder of pictures: NAME.svg, or NAME.png with NAME@2x.png for screens of two pixels a point, or one of these
// alone.

#include <QString>

#include "skin/skin_picture.h"

namespace zq {

class SkinFolder {
 public:
  explicit SkinFolder(QString path);

  const QString& path() const { return path_; }
  /// The picture `name`, SVG before PNG; null when the folder has no file of that name. Of a broken file the error says
  /// which it is and why; then none of the other files of that name is used.
  Expected<SkinPictureHandle> picture(const QString& name) const;

 private:
  Expected<SkinPictureHandle> svgPicture(const QString& name) const;
  Expected<SkinPictureHandle> pngPicture(const QString& name) const;

  QString path_;
};

}  // namespace zq
