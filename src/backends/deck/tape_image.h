#pragma once
// A tape image as the deck plays it: frames that are views into the mapped file, however long it is.

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "backends/deck/frame_index.h"
#include "backends/deck/mapped_window.h"
#include "backends/deck/tape_file.h"
#include "base/shared_bytes.h"
#include "base/status.h"

namespace zq::backend {

/// One thread at a time, but for what is constant.
class TapeImage {
 public:
  static Expected<std::shared_ptr<TapeImage>> open(const std::string& path);

  const std::string& path() const { return file_->path(); }
  /// The system of the first frame.
  DVSystem system() const { return system_; }
  /// Where frame `frame` lies; nothing past the last whole one.
  Expected<std::optional<FrameLocation>> locate(std::int64_t frame) { return index_.locate(frame); }
  /// The frame's bytes, without a copy. An error when the file shrank or cannot be read.
  Expected<SharedBytes> frameBytes(const FrameLocation& location);
  /// Whether frames handed out before may hold zeros where the file could not be read. From any thread.
  bool damaged() const { return *damaged_; }
  /// Bytes after the last whole frame; walks the index to the end.
  Expected<std::uint64_t> trailingBytes();

 private:
  TapeImage(std::shared_ptr<TapeFile> file, FrameIndex index, DVSystem system);

  // Constant after construction.
  const std::shared_ptr<TapeFile> file_;
  const DVSystem system_;
  const MappedWindow::DamageFlag damaged_ = std::make_shared<std::atomic<bool>>(false);

  FrameIndex index_;
  std::shared_ptr<const MappedWindow> window_;
  std::int64_t lastLocated_ = 0;
};

}  // namespace zq::backend
