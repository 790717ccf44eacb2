#include "skin/skin_folder.h"

#include <QByteArray>
#include <QFile>
#include <QFileInfo>
#include <algorithm>
#include <optional>
#include <string>
#include <utility>

namespace zq {
namespace {

constexpr qint64 kMostBytes = 16 << 20;

/// A name is one file's name, so that none leads out of the folder.
bool isName(const QString& name) {
  return !name.isEmpty() && std::all_of(name.begin(), name.end(), [](QChar c) {
    return c.unicode() < 128 && (c.isLetterOrNumber() || c == u'_' || c == u'-');
  });
}

Error broken(const QString& file, const std::string& reason) {
  return Error{"Cannot use " + file.toStdString() + " as a picture of the skin",
               "Reason: " + reason + ". Repair or remove the file; until then the built-in picture is shown."};
}

/// The file's bytes; none when there is no such file.
Expected<std::optional<QByteArray>> bytesOf(const QString& path) {
  const QFileInfo info(path);
  if (!info.exists() && !info.isSymLink()) return std::optional<QByteArray>();
  // Asked before it is opened: a pipe would be waited for.
  if (!info.isFile()) return broken(path, "it is not a file");
  if (info.size() == 0) return broken(path, "it is empty");
  if (info.size() > kMostBytes) return broken(path, "it is larger than 16 MB");
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly)) return broken(path, file.errorString().toStdString());
  QByteArray bytes = file.read(kMostBytes);
  if (file.error() != QFileDevice::NoError) return broken(path, file.errorString().toStdString());
  return std::optional<QByteArray>(std::move(bytes));
}

/// Null when there is no such file.
Expected<QImage> pixelsOf(const QString& path) {
  const auto bytes = bytesOf(path);
  if (!bytes.ok()) return bytes.error();
  if (!bytes.value()) return QImage();
  auto pixels = pngPixels(*bytes.value());
  if (!pixels.ok()) return broken(path, pixels.error().informative);
  return pixels;
}

}  // namespace

SkinFolder::SkinFolder(QString path) : path_(std::move(path)) {}

Expected<SkinPictureHandle> SkinFolder::picture(const QString& name) const {
  if (!isName(name)) return SkinPictureHandle();
  auto svg = svgPicture(name);
  if (!svg.ok() || svg.value() != nullptr) return svg;
  return pngPicture(name);
}

Expected<SkinPictureHandle> SkinFolder::svgPicture(const QString& name) const {
  const QString path = path_ + u'/' + name + QLatin1String(".svg");
  const auto bytes = bytesOf(path);
  if (!bytes.ok()) return bytes.error();
  if (!bytes.value()) return SkinPictureHandle();
  auto picture = svgSkinPicture(*bytes.value());
  if (!picture.ok()) return broken(path, picture.error().informative);
  return picture;
}

Expected<SkinPictureHandle> SkinFolder::pngPicture(const QString& name) const {
  const QString path = path_ + u'/' + name;
  const auto single = pixelsOf(path + QLatin1String(".png"));
  if (!single.ok()) return single.error();
  const auto twofold = pixelsOf(path + QLatin1String("@2x.png"));
  if (!twofold.ok()) return twofold.error();
  if (single.value().isNull() && twofold.value().isNull()) return SkinPictureHandle();
  return pngSkinPicture(single.value(), twofold.value());
}

}  // namespace zq
