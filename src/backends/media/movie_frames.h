#pragma once
// Reads the DV frames of a movie file back, as they were written.

#include <functional>
#include <string>

#include "base/shared_bytes.h"
#include "base/status.h"

namespace zq::media {

/// Calls `take` with each video packet of the file in turn, or returns why the file cannot be read. What `take` gets is
/// valid during the call, and longer if it keeps the handle.
Status readMovieFrames(const std::string& path, const std::function<void(const SharedBytes&)>& take);

}  // namespace zq::media
