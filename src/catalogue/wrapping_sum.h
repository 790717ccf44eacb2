#pragma once
// Sums of frame counts, which wrap at 32 bits as the counts themselves do: a list may hold any timecode.

#include <cstdint>

namespace zq {

constexpr std::int32_t wrappingSum(std::int32_t one, std::int32_t other) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(one) + static_cast<std::uint32_t>(other));
}

}  // namespace zq
