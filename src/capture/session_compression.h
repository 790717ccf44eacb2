#pragma once
// How the choice of a compression reaches a running session.

#include <memory>

#include "platform/capture_session.h"

namespace zq {

/// Null writes frames as received. Only `output` is told, on its video connections: another output keeps carrying the
/// DV frames that are decoded. The session stands still meanwhile.
void applyVideoCompression(platform::QTCaptureSession& session, platform::QTCaptureFileOutput& output,
                           const std::shared_ptr<const platform::QTCompressionOptions>& options);

}  // namespace zq
