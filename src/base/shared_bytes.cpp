#include "base/shared_bytes.h"

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

void SharedBytes::throwOutOfRange() {
  throw std::out_of_range("byte range ends past the end of the buffer");
}

}  // namespace zq
