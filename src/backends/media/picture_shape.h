#pragma once
// How wide a recorded picture is meant to be shown.

#include <cstdint>
#include <span>

namespace zq::media {

/// Whether the frame says that its picture fills a 16:9 screen. A frame that says nothing is 4:3.
bool isWideScreen(std::span<const std::uint8_t> frame);

}  // namespace zq::media
