#pragma once
// How many pictures a finished movie file holds.

#include <cstdint>
#include <string>

#include "base/status.h"

namespace zq::media {

/// The packets of the file's video track, read to its end: one for each picture in the containers that movies are
/// written in. An error when the file is no movie, or ends inside a packet.
Expected<std::int64_t> countMovieFrames(const std::string& path);

}  // namespace zq::media
