#pragma once
// Keeps the movie file in step with the open clip where the frames that should have started or ended it carry no
// timecode.

#include "capture/controller.h"
#include "platform/capture_session.h"

namespace zq::host {

/// On the delivery thread, after the controller has seen `frame` and before `output`, its movie output, writes it. A
/// movie starts and ends at timecodes, so on frames without one it would do neither, and the clip would lose its
/// beginning or, on a tape without any timecode, its movie.
void keepMovieWithClip(ZQACController& controller, platform::QTCaptureFileOutput& output,
                       const platform::QTSampleBuffer& frame);

}  // namespace zq::host
