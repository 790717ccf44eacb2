#pragma once
// The numbers by which the compression services say what went wrong.

#include <cstdint>

namespace zq::media {

/// What was asked for is nothing that the service knows, or that this component has.
inline constexpr std::int32_t kUnknownParameter = -50;
/// Stored settings that are damaged, or of a later version.
inline constexpr std::int32_t kUnreadableSettings = -9702;

}  // namespace zq::media
