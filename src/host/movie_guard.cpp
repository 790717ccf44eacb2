#include "host/movie_guard.h"

#include <optional>
#include <string>

namespace zq::host {

void keepMovieWithClip(ZQACController& controller, platform::QTCaptureFileOutput& output,
                       const platform::QTSampleBuffer& frame) {
  if (frame.smpteTime || !controller.isRecording()) return;
  const std::optional<std::string> wanted = controller.isPrerolling() ? std::nullopt : controller.moviePath();
  if (output.outputFileURL() == wanted) return;
  output.recordToOutputFileURL(wanted);
  // Done; were they left armed, the next frame with a timecode would end the file that has just begun.
  controller.setTimecodeEndValue(nullptr);
  controller.setTimecodeStartValue(nullptr);
}

}  // namespace zq::host
