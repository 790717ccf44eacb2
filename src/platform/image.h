#pragma once
// A picture as a record holds it.

#include <cstdint>
#include <memory>
#include <vector>

namespace zq::platform {

struct Image {
  /// The bytes of a PNG or JPEG file.
  std::vector<std::uint8_t> encoded;
};

/// Shared and immutable, null for none.
using ImageValue = std::shared_ptr<const Image>;

}  // namespace zq::platform
