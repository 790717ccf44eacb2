#pragma once
// The picture sizes of custom compression, by the tag that the settings have them under.

#include <optional>
#include <string>

namespace zq::host {

/// The tape's own size: any tag that is no size stands for it.
inline constexpr int kTagOfTape = 5;

/// Of "0" to "5", "320x240" or "tape"; nothing for what is no size of custom compression.
std::optional<int> pictureSizeTag(const std::string& text);
/// "320x240", or "tape".
std::string pictureSizeName(int tag);
/// All that pictureSizeTag() takes, for a message.
std::string pictureSizes();

}  // namespace zq::host
