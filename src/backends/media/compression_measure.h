#pragma once
// How fast a compression is on this machine.

#include <memory>
#include <string>
#include <vector>

#include "base/status.h"
#include "platform/clock.h"
#include "platform/movie_writer.h"

namespace zq::media {

/// How many times as fast as they play `frames` are written with `options` into a file of the extension `container`,
/// which is gone afterwards.
Expected<double> measureCompression(const std::shared_ptr<const platform::QTCompressionOptions>& options,
                                    const std::string& container, const std::vector<platform::QTSampleBuffer>& frames,
                                    platform::Clock& clock);

}  // namespace zq::media
