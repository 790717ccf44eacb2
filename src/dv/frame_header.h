#pragma once
// How the first blocks of a DV frame are told from other bytes.

#include <cstddef>
#include <cstdint>
#include <span>

#include "dv/dv_system.h"

namespace zq {

/// What looksLikeFrameHeader needs to see: the header block and both subcode blocks.
inline constexpr std::size_t kFrameHeaderSize = 240;

/// Whether a frame may begin with these bytes, of which the first 240 are read; false when there are fewer. True for
/// the second half of a 50 Mbit/s frame as well, see isSecondChannel.
bool looksLikeFrameHeader(std::span<const std::uint8_t> first);

/// Only of bytes that look like a frame header.
DVSystem systemOfHeader(std::span<const std::uint8_t> first);
/// Only of bytes that look like a frame header: whether they begin the second half of a 50 Mbit/s frame.
bool isSecondChannel(std::span<const std::uint8_t> first);

}  // namespace zq
