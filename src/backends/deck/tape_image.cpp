#include "backends/deck/tape_image.h"

#include <utility>

namespace zq::backend {

Expected<std::shared_ptr<TapeImage>> TapeImage::open(const std::string& path) {
  auto tape = openTape(path);
  if (!tape.ok()) return tape.error();
  OpenTape& opened = tape.value();
  return std::shared_ptr<TapeImage>(new TapeImage(opened.file, std::move(opened.index), opened.first.system));
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
