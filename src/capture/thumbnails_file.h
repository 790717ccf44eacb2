#pragma once
// The thumbnails file of a clip: whole DV frames laid end to end, as received, without header, index or padding. Frame
// k stands at byte k x frame size; the first frame's header tells which size that is.

#include <string>

#include "base/shared_bytes.h"

namespace zq {

/// A file that cannot be made or written takes frames silently: the movie matters more than its pictures.
class ThumbnailsFile {
 public:
  ThumbnailsFile() = default;
  ~ThumbnailsFile() { close(); }
  ThumbnailsFile(const ThumbnailsFile&) = delete;
  ThumbnailsFile& operator=(const ThumbnailsFile&) = delete;

  /// Creates the file if there is none. One that exists is written over from its start and not cut, so what it holds
  /// beyond that stays.
  void open(const std::string& path);
  void append(const SharedBytes& frame) const;
  void close();
  bool isOpen() const { return descriptor_ >= 0; }

 private:
  int descriptor_ = -1;
};

}  // namespace zq
