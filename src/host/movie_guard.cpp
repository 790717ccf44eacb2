#include "host/movie_guard.h"

#include <optional>
#include <string>

namespace zq::host {

void keepMovieWithClip(ZQACController& controller, platform::QTCaptureFileOutput& output,
                       const platform::QTSampleBuffer& frame) {
  if (frame.smpteTime || !controller.isRecording()) return;
  const std::optional<std::string> wanted = controller.isPrerolling() ? std::nullopt : controller.moviePath();
  const bool isRight = output.outputFileURL() == wanted;
  if (!isRight) output.recordToOutputFileURL(wanted);
  // Were it left armed, the next frame with a timecode would end the file that has just begun: an end is always that of
  // the clip before. The controller begins a file itself on a frame without a timecode, as that counts as zero, where
  // the start point is zero too; the end point then waits for a later timecode.
  if (!isRight || wanted) controller.setTimecodeEndValue(nullptr);
  if (!isRight) controller.setTimecodeStartValue(nullptr);
}

}  // namespace zq::host
