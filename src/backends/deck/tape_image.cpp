#include "backends/deck/tape_image.h"

#include <algorithm>
#include <utility>

namespace zq::backend {
namespace {

// Small, so that what is mapped stays within the frames that are under way; large enough to map seldom.
constexpr std::uint64_t kWindowBytes = 8 * 1024 * 1024;

}  // namespace

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
  if (Status status = file_->checkSize(); !status.ok()) return status.error();
  if (damaged()) {
    return Error{
        "A part of the tape image " + path() + " could not be read",
        "The file was cut while it played, or its disk has an error; frames before this one may be incomplete."};
  }
  const std::size_t length = frameSizeOf(location.system);
  if (!window_ || !window_->covers(location.offset, length)) {
    const std::uint64_t wanted = std::min(kWindowBytes, file_->size() - location.offset);
    auto window = MappedWindow::map(file_->descriptor(), location.offset, static_cast<std::size_t>(wanted), damaged_);
    if (!window.ok()) return window.error();
    window_ = window.value();
  }
  return SharedBytes(window_, window_->bytes(location.offset, length));
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
