#pragma once
// A tape image as the deck plays it: frame by frame, however long it is.

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "backends/deck/frame_index.h"
#include "backends/deck/frame_pool.h"
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
  /// The frame's bytes. An error when the file shrank or cannot be read.
  Expected<SharedBytes> frameBytes(const FrameLocation& location);
  /// Bytes after the last whole frame; walks the index to the end.
  Expected<std::uint64_t> trailingBytes();

 private:
  TapeImage(std::shared_ptr<TapeFile> file, FrameIndex index, DVSystem system);

  // Constant after construction.
  const std::shared_ptr<TapeFile> file_;
  const DVSystem system_;

  FrameIndex index_;
  FramePool pool_;
  std::int64_t lastLocated_ = 0;
};

}  // namespace zq::backend
