#pragma once
// How large a clip's picture is in the strip, in points.

namespace zq {

inline constexpr int ZQACPosterImageWidth = 60;
inline constexpr int ZQACPosterImageHeight = 40;

}  // namespace zq
