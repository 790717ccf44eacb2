#pragma once
// A new file on disk that can make sure of room before it is written.

#include <cstdint>
#include <memory>
#include <span>
#include <string>

#include "base/status.h"

namespace zq::media {

/// Errors name the file, say why, and what to do. Each write takes effect whole or reports an error.
class OutputFile {
 public:
  /// Creates the file; one that exists already is an error and stays as it is.
  static Expected<std::unique_ptr<OutputFile>> create(const std::string& path);
  /// Closes the file, if nobody did, without telling how that went.
  ~OutputFile();
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  const std::string& path() const { return path_; }
  /// One past the last byte written.
  std::int64_t size() const { return size_; }

  /// Writes `bytes` from `position` on.
  Status writeAt(std::int64_t position, std::span<const std::uint8_t> bytes);
  /// Makes sure that the disk has room for `bytes` more than size(), and keeps it for this file. Without that much room
  /// nothing changes in what was written.
  Status reserve(std::int64_t bytes);
  /// Drops what lies beyond `size`.
  Status cutTo(std::int64_t size);
  /// Gives back what was reserved and not used, and closes. No call but remove() follows.
  Status close();
  /// Closes and deletes the file.
  Status remove();

 private:
  OutputFile(std::string path, int descriptor);
  // These return 0 or the error number.
  int makeRoom(std::int64_t end);
  int allocateTo(std::int64_t end);
  int fillWithZeros(std::int64_t end);
  Error failure(int errorNumber) const;

  const std::string path_;
  int descriptor_;
  std::int64_t size_ = 0;
  // The disk holds room for the file up to here; beyond size_ it is what was reserved.
  std::int64_t allocated_ = 0;
  bool diskAllocates_ = true;
};

}  // namespace zq::media
