#pragma once
// The file of a tape image, opened for reading: its bytes by position, and what is wrong with it in a user's words.

#include <cstdint>
#include <memory>
#include <span>
#include <string>

#include "backends/deck/tape_window.h"
#include "base/status.h"

namespace zq::backend {

class TapeFile {
 public:
  /// A regular, readable file that is not empty; else an error that says which file, why and what to do.
  static Expected<std::shared_ptr<TapeFile>> open(const std::string& path);
  ~TapeFile();
  TapeFile(const TapeFile&) = delete;
  TapeFile& operator=(const TapeFile&) = delete;

  const std::string& path() const { return path_; }
  /// Bytes, as found when it was opened.
  std::uint64_t size() const { return size_; }

  /// The same file with a descriptor of its own, for a second thread: two that read through one descriptor hold each
  /// other up. Null where the system gives none.
  std::shared_ptr<const TapeFile> openedAgain() const;

  /// Fills `destination` from `offset` on. Fails when the file cannot be read there or has become shorter.
  Status read(std::span<std::uint8_t> destination, std::uint64_t offset) const;
  /// Fails when the file has become shorter than it was when it was opened. A mapped file that lost less than a page
  /// tells it by nothing else: its lost bytes read as zeros.
  Status checkSize() const;
  /// The file from `offset` on, a multiple of the page size, for `length` bytes or up to the size it had when it was
  /// opened. Empty where there is nothing or the system maps no such files.
  TapeWindow window(std::uint64_t offset, std::uint64_t length) const;

 private:
  TapeFile(std::string path, int descriptor, std::uint64_t size);
  Error shrunk() const;

  // Constant after construction.
  const std::string path_;
  const int descriptor_;
  const std::uint64_t size_;
};

}  // namespace zq::backend
