#pragma once
// The skin in force: the built-in pictures, and a user's folder whose pictures replace those of the same name.

#include <QCache>
#include <QImage>
#include <QSize>
#include <QString>
#include <map>
#include <optional>
#include <utility>

#include "base/log.h"
#include "base/status.h"
#include "skin/skin_folder.h"
#include "skin/skin_picture.h"

namespace zq {

/// Main thread only. There is one for the whole process: each class asks for its pictures once, before any object of it
/// is made, so nobody is there yet to hand it a skin; and what is drawn on one screen has one look. Nothing else of the
/// process is shared this way.
class Skin {
 public:
  static Skin& current();

  /// Where broken files and missing pictures are told; null tells nobody. The log must outlive its being set.
  void setLog(Log* log) { log_ = log; }

  /// Replaces the user's folder; an empty path is none. A folder need not hold every picture. Files are read when they
  /// are first drawn, and again after the next call; the caller redraws its windows. A path that is not a folder is
  /// refused, and the skin stays as it was.
  Status setFolder(const QString& path);
  /// Empty when there is none.
  QString folder() const { return folder_ ? folder_->path() : QString(); }

  /// The picture to show under `name`; null when neither the folder nor the built-in pictures have it. A broken file of
  /// the folder is told to the log once, and the built-in picture is answered.
  SkinPictureHandle picture(const QString& name);
  /// Its pixels at a size of at least 1 x 1, from the cache when it was drawn at this size lately; null when there is
  /// no picture.
  QImage rendered(const QString& name, QSize pixels);
  /// One line says that `className` asked for a picture that is nowhere.
  void reportMissing(const QString& name, const char* className) const;

  /// Bytes of pixels that are kept for redraws. Setting fewer drops what is too much.
  void setCacheLimit(qsizetype bytes) { cache_.setMaxCost(bytes); }
  qsizetype cachedBytes() const { return cache_.totalCost(); }

 private:
  using CacheKey = std::pair<QString, std::pair<int, int>>;

  Skin();
  SkinPictureHandle loaded(const QString& name) const;
  void tell(LogLevel level, const std::string& line) const;

  Log* log_ = nullptr;
  SkinFolder ours_;
  std::optional<SkinFolder> folder_;
  std::map<QString, SkinPictureHandle> pictures_;  // null ones too: what is missing is looked for once
  QCache<CacheKey, QImage> cache_;
};

}  // namespace zq
