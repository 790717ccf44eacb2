#include "backends/deck/tape_image.h"

#include <utility>

namespace zq::backend {

Expected<std::shared_ptr<TapeImage>> TapeImage::open(const std::string& path) {
  auto file = TapeFile::open(path);
  if (!file.ok()) return file.error();
  auto index = FrameIndex::open(file.value());
  if (!index.ok()) return index.error();
  auto first = index.value().locate(0);
  if (!first.ok()) return first.error();
  if (!first.value())
    return Error{"The tape image " + path + " ends inside its first frame", "There is nothing to play."};
  const DVSystem system = first.value()->system;
  return std::shared_ptr<TapeImage>(new TapeImage(file.value(), std::move(index.value()), system));
}

TapeImage::TapeImage(std::shared_ptr<TapeFile> file, FrameIndex index, DVSystem system)
    : file_(std::move(file)), system_(system), index_(std::move(index)) {}

Expected<SharedBytes> TapeImage::frameBytes(const FrameLocation& location) {
  return pool_.take(frameSizeOf(location.system),
                    [&](std::span<std::uint8_t> bytes) { return file_->read(bytes, location.offset); });
}

Expected<std::uint64_t> TapeImage::trailingBytes() {
  std::uint64_t end = 0;
  for (std::int64_t frame = lastLocated_;; ++frame) {
    auto location = index_.locate(frame);
    if (!location.ok()) return location.error();
    if (!location.value()) return file_->size() - end;
    end = location.value()->end();
    lastLocated_ = frame;
  }
}

}  // namespace zq::backend
