#include "base/shared_bytes.h"

#include <algorithm>
#include <stdexcept>
#include <utility>
#include <vector>

namespace zq {

SharedBytes::SharedBytes(std::shared_ptr<const void> owner, std::span<const std::uint8_t> bytes)
    : owner_(std::move(owner)), bytes_(bytes) {}

SharedBytes SharedBytes::copyOf(std::span<const std::uint8_t> bytes) {
  auto owner = std::make_shared<const std::vector<std::uint8_t>>(bytes.begin(), bytes.end());
  return SharedBytes(owner, *owner);
}

void SharedBytes::getBytes(std::span<std::uint8_t> destination, std::size_t start) const {
  if (start > bytes_.size() || destination.size() > bytes_.size() - start) {
    throw std::out_of_range("byte range ends past the end of the buffer");
  }
  std::copy_n(bytes_.begin() + static_cast<std::ptrdiff_t>(start), destination.size(), destination.begin());
}

bool SharedBytes::sameBufferAs(const SharedBytes& other) const {
  return owner_ == other.owner_ && bytes_.data() == other.bytes_.data() && bytes_.size() == other.bytes_.size();
}

}  // namespace zq
