#include "host/picture_size.h"

#include <fmt/format.h>

#include <vector>

#include "capture/custom_compression.h"

namespace zq::host {

std::optional<int> pictureSizeTag(const std::string& text) {
  for (int tag = 0; tag <= kTagOfTape; ++tag) {
    if (text == std::to_string(tag) || text == pictureSizeName(tag)) return tag;
  }
  return std::nullopt;
}

std::string pictureSizeName(int tag) {
  const FrameSize size = fitSize(tag);
  return size == FrameSize() ? "tape" : fmt::format("{}x{}", size.width, size.height);
}

std::string pictureSizes() {
  std::vector<std::string> sizes;
  for (int tag = 0; tag <= kTagOfTape; ++tag) sizes.push_back(fmt::format("{} ({})", pictureSizeName(tag), tag));
  return fmt::format("{}", fmt::join(sizes, ", "));
}

}  // namespace zq::host
