#pragma once
// How FFmpeg's libraries say what went wrong.

#include <string>

namespace zq::media {

/// The reason that goes with one of their error numbers.
std::string avReason(int averror);

}  // namespace zq::media
