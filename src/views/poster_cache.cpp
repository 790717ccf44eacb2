#include "views/poster_cache.h"

#include <QBuffer>
#include <QByteArray>
#include <QImageReader>
#include <QSize>
#include <QString>
#include <algorithm>
#include <cmath>
#include <string>

#include "views/poster_size.h"

namespace zq {
namespace {

/// More than any screen has: a wild number must not ask for wild memory.
constexpr qreal kMostPixelsPerPoint = 8;
constexpr std::size_t kBrokenBeforeTidying = 64;

bool isSame(const std::weak_ptr<const platform::Image>& one, const platform::ImageValue& other) {
  return !one.owner_before(other) && !other.owner_before(one);
}

QSize largestAt(qreal scale) {
  return {static_cast<int>(std::ceil(ZQACPosterImageWidth * scale)),
          static_cast<int>(std::ceil(ZQACPosterImageHeight * scale))};
}

// A reader that is told the size before it reads may skip most of the work for a large photograph.
QImage readAtMost(QImageReader& reader, const QSize& largest) {
  const QSize own = reader.size();
  if (own.isValid()) reader.setScaledSize(own.boundedTo(largest));
  const QImage image = reader.read();
  if (image.isNull()) return image;
  const QSize wanted = image.size().boundedTo(largest);
  const QImage fitting =
      image.size() == wanted ? image : image.scaled(wanted, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
  return fitting.convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

}  // namespace

QImage PosterCache::picture(const platform::ImageValue& image, qreal scale, std::string_view owner) {
  if (!image) return {};
  const qreal usedScale = std::isfinite(scale) ? std::clamp(scale, 1.0, kMostPixelsPerPoint) : 1.0;
  const Picture* kept = pictures_.object(image.get());
  if (kept != nullptr && kept->scale == usedScale && isSame(kept->image, image)) return kept->pixels;
  return isBroken(image) ? QImage() : decoded(image, usedScale, owner);
}

QImage PosterCache::decoded(const platform::ImageValue& image, qreal scale, std::string_view owner) {
  const auto size = static_cast<qsizetype>(image->encoded.size());
  QByteArray bytes = QByteArray::fromRawData(reinterpret_cast<const char*>(image->encoded.data()), size);
  QBuffer buffer(&bytes);
  QImageReader reader(&buffer);
  const QImage pixels = readAtMost(reader, largestAt(scale));
  if (pixels.isNull()) {
    refuse(image, owner, reader.errorString());
  } else {
    pictures_.insert(image.get(), new Picture{image, scale, pixels}, pixels.sizeInBytes());  // the cache owns it
  }
  return pixels;
}

bool PosterCache::isBroken(const platform::ImageValue& image) const {
  const auto found = broken_.find(image.get());
  return found != broken_.end() && isSame(found->second, image);
}

// Images that are gone are dropped from the list each time it has doubled.
void PosterCache::refuse(const platform::ImageValue& image, std::string_view owner, const QString& why) {
  if (broken_.size() >= std::max(kBrokenBeforeTidying, 2 * brokenAfterTidying_)) {
    std::erase_if(broken_, [](const auto& entry) { return entry.second.expired(); });
    brokenAfterTidying_ = broken_.size();
  }
  broken_.insert_or_assign(image.get(), image);
  if (log_ == nullptr) return;
  log_->write(LogLevel::warning, "The poster image of clip \"" + std::string(owner) + "\" cannot be shown: " +
                                     why.toStdString() + " (" + std::to_string(image->encoded.size()) + " bytes).");
}

}  // namespace zq
