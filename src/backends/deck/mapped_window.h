#pragma once
// A part of a file mapped into memory, for reading. A page that the file has lost, or that cannot be read, reads as
// zeros and sets a flag, where the system would end the program.

#include <atomic>
#include <cstdint>
#include <memory>
#include <span>

#include "base/status.h"

namespace zq::backend {

class MappedWindow {
 public:
  using DamageFlag = std::shared_ptr<std::atomic<bool>>;

  /// Maps at least [offset, offset + length) of the file; the range lies inside the file now. `damaged` is set when a
  /// page turns out to be lost.
  static Expected<std::shared_ptr<const MappedWindow>> map(int descriptor, std::uint64_t offset, std::size_t length,
                                                           DamageFlag damaged);
  ~MappedWindow();
  MappedWindow(const MappedWindow&) = delete;
  MappedWindow& operator=(const MappedWindow&) = delete;

  bool covers(std::uint64_t offset, std::size_t length) const;
  std::span<const std::uint8_t> bytes(std::uint64_t offset, std::size_t length) const;

 private:
  MappedWindow(std::uint8_t* start, std::size_t length, std::uint64_t offset, int slot, DamageFlag damaged);

  // Constant after construction.
  std::uint8_t* const start_;
  const std::size_t length_;
  const std::uint64_t offset_;
  const int slot_;
  const DamageFlag damaged_;
};

}  // namespace zq::backend
