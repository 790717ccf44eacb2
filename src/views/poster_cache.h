#pragma once
// Poster images as pixels, decoded when they are first drawn.

#include <QCache>
#include <QImage>
#include <cstddef>
#include <memory>
#include <string_view>
#include <unordered_map>

#include "base/log.h"
#include "platform/image.h"

namespace zq {

/// Keeps a bounded number of bytes, those that were drawn last, and no encoded image alive. Main thread only.
class PosterCache {
 public:
  static constexpr qsizetype kDefaultLimit = qsizetype{16} << 20;

  explicit PosterCache(qsizetype limitInBytes = kDefaultLimit) : pictures_(limitInBytes) {}

  /// Where images that cannot be decoded are told; null tells nobody. The log must outlive its being set.
  void setLog(Log* log) { log_ = log; }

  /// The whole image in at most one poster's pixels at `scale` device pixels a point, its proportions given up; null
  /// when there is none, or when it cannot be decoded: that is tried, and told with `owner`, once an image.
  QImage picture(const platform::ImageValue& image, qreal scale, std::string_view owner);

  qsizetype cachedBytes() const { return pictures_.totalCost(); }

 private:
  using Key = const platform::Image*;

  // Beside each key stands a weak reference: a new image may lie where one that is gone lay.
  struct Picture {
    std::weak_ptr<const platform::Image> image;
    qreal scale;
    QImage pixels;
  };

  QImage decoded(const platform::ImageValue& image, qreal scale, std::string_view owner);
  bool isBroken(const platform::ImageValue& image) const;
  void refuse(const platform::ImageValue& image, std::string_view owner, const QString& why);

  Log* log_ = nullptr;
  QCache<Key, Picture> pictures_;
  std::unordered_map<Key, std::weak_ptr<const platform::Image>> broken_;
  std::size_t brokenAfterTidying_ = 0;
};

}  // namespace zq
