#pragma once
// A part of a tape's file, mapped into memory.

#include <cstdint>
#include <span>

namespace zq::backend {

/// Any number of threads may read.
class TapeWindow {
 public:
  /// Holds nothing.
  TapeWindow() = default;
  /// `length` bytes from `offset` on, which is a multiple of the page size. Holds nothing where the system maps no
  /// files of this kind.
  TapeWindow(int descriptor, std::uint64_t offset, std::uint64_t length);
  ~TapeWindow();
  TapeWindow(TapeWindow&& other) noexcept;
  TapeWindow& operator=(TapeWindow&& other) noexcept;

  bool isEmpty() const { return bytes_.empty(); }
  bool holds(std::uint64_t offset, std::uint64_t length) const {
    return offset >= offset_ && length <= bytes_.size() && offset - offset_ <= bytes_.size() - length;
  }
  /// Of bytes that it holds. False, with some of `destination` overwritten, when they cannot be read any more.
  bool copy(std::span<std::uint8_t> destination, std::uint64_t offset) const;
  /// Has the processor fetch `length` bytes that will be copied soon, while it goes on. Any offset will do.
  void fetch(std::uint64_t offset, std::uint64_t length) const;

 private:
  std::span<const std::uint8_t> bytes_;
  std::uint64_t offset_ = 0;  // in the file
};

}  // namespace zq::backend
