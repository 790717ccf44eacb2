#include "capture/session_compression.h"

namespace zq {

void applyVideoCompression(platform::QTCaptureSession& session, platform::QTCaptureFileOutput& output,
                           const std::shared_ptr<const platform::QTCompressionOptions>& options) {
  if (session.isRunning()) session.stopRunning();
  for (const platform::QTCaptureConnection& connection : output.connections()) {
    if (connection.mediaType != platform::QTMediaTypeVideo) continue;
    output.setCompressionOptionsForConnection(options, connection);
  }
  if (session.inputCount() > 0) session.startRunning();
}

}  // namespace zq
