#include "backends/deck/tape_window.h"

#include <sys/mman.h>
#include <sys/types.h>

#include <utility>

#include "backends/deck/guarded_copy.h"

namespace zq::backend {

TapeWindow::TapeWindow(int descriptor, std::uint64_t offset, std::uint64_t length) : offset_(offset) {
  void* address = ::mmap(nullptr, length, PROT_READ, MAP_SHARED, descriptor, static_cast<off_t>(offset));
  if (address == MAP_FAILED) return;
  // What is not in memory yet then comes in the largest pieces there are, which makes mapped reads cheap from now on,
  // for whoever reads the file next too. Advice: where it cannot be followed nothing is lost.
  static_cast<void>(::madvise(address, length, MADV_HUGEPAGE));
  bytes_ = {static_cast<const std::uint8_t*>(address), length};
}

TapeWindow::~TapeWindow() {
  if (!bytes_.empty()) ::munmap(const_cast<std::uint8_t*>(bytes_.data()), bytes_.size());
}

TapeWindow::TapeWindow(TapeWindow&& other) noexcept : bytes_(std::exchange(other.bytes_, {})), offset_(other.offset_) {}

TapeWindow& TapeWindow::operator=(TapeWindow&& other) noexcept {
  std::swap(bytes_, other.bytes_);
  std::swap(offset_, other.offset_);
  return *this;
}

bool TapeWindow::copy(std::span<std::uint8_t> destination, std::uint64_t offset) const {
  return copyGuarded(destination.data(), bytes_.data() + (offset - offset_), destination.size());
}

void TapeWindow::fetch(std::uint64_t offset, std::uint64_t length) const {
  constexpr std::uint64_t kCacheLine = 64;
  if (!holds(offset, length)) return;
  const std::uint8_t* start = bytes_.data() + (offset - offset_);
  for (std::uint64_t i = 0; i < length; i += kCacheLine) __builtin_prefetch(start + i);
}

}  // namespace zq::backend
