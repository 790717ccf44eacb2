#include "skin/skin.h"

#include <QFileInfo>
#include <QtGlobal>
#include <string>
#include <utility>

/// In a static library nothing refers to the compiled-in files, so the linker would leave them out. What it calls is
/// declared in the global namespace.
static void linkPictures() {
  Q_INIT_RESOURCE(skin);
}

namespace zq {
namespace {

constexpr qsizetype kCacheBytes = 32 << 20;

}  // namespace

Skin& Skin::current() {
  static Skin& skin = *new Skin;  // lives as long as the process: at its end, Qt itself is taken apart first
  return skin;
}

Skin::Skin() : ours_(QStringLiteral(":/deckhand/skin")), cache_(kCacheBytes) {
  linkPictures();
}

Status Skin::setFolder(const QString& path) {
  if (!path.isEmpty() && !QFileInfo(path).isDir()) {
    const bool isThere = QFileInfo::exists(path);
    return Error{"Cannot use " + path.toStdString() + " as a skin",
                 isThere ? "It is not a folder. Give the folder that holds the pictures."
                         : "There is no such folder. Check the path."};
  }
  folder_.reset();
  if (!path.isEmpty()) folder_.emplace(path);
  pictures_.clear();
  cache_.clear();
  return {};
}

SkinPictureHandle Skin::picture(const QString& name) {
  const auto known = pictures_.find(name);
  if (known != pictures_.end()) return known->second;
  return pictures_.emplace(name, loaded(name)).first->second;
}

SkinPictureHandle Skin::loaded(const QString& name) const {
  if (folder_) {
    const auto theirs = folder_->picture(name);
    if (!theirs.ok()) tell(LogLevel::warning, theirs.error().text());
    if (theirs.ok() && theirs.value() != nullptr) return theirs.value();
  }
  const auto ours = ours_.picture(name);
  if (!ours.ok()) tell(LogLevel::error, ours.error().text());
  return ours.ok() ? ours.value() : nullptr;
}

QImage Skin::rendered(const QString& name, QSize pixels) {
  const CacheKey key(name, {pixels.width(), pixels.height()});
  if (const QImage* kept = cache_.object(key)) return *kept;
  const SkinPictureHandle picture = this->picture(name);
  if (picture == nullptr) return {};
  QImage image = picture->rendered(pixels);
  cache_.insert(key, new QImage(image), image.sizeInBytes());  // the cache owns it, and drops it when it is too large
  return image;
}

void Skin::reportMissing(const QString& name, const char* className) const {
  tell(LogLevel::warning, "No picture " + name.toStdString() + " for " + className +
                              ". It is in no skin, so its place stays empty; reinstall the program.");
}

void Skin::tell(LogLevel level, const std::string& line) const {
  if (log_ != nullptr) log_->write(level, line);
}

}  // namespace zq
