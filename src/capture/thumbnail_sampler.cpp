#include "capture/thumbnail_sampler.h"

#include "timecode/timecode_utils.h"

namespace zq {

void ThumbnailSampler::setPath(const std::optional<std::string>& path) {
  if (path == path_) return;
  closeFile();
  path_ = path;
  createFile();
}

void ThumbnailSampler::createFile() {
  if (path_) file_.open(*path_);
}

// A last frame that was itself written as a sample is not held any more, so it is not written twice.
void ThumbnailSampler::closeFile() {
  if (!path_) return;
  if (lastFrame_) addFrame(lastFrame_, lastTimecode_ ? *lastTimecode_ : nullTimecode);
  file_.close();
}

void ThumbnailSampler::take(const SharedBytes& frame, const SMPTETime& timecode, bool firstOfClip) {
  const bool due = settings_.frameSampling() && ZQACTimecodeUtils::timecodeCompareWith(nextTimecode_, timecode) <= 0;
  if (!firstOfClip && !due) {
    lastFrame_ = frame;
    return;
  }
  addFrame(frame, timecode);
  lastFrame_ = SharedBytes();
}

void ThumbnailSampler::addFrame(const SharedBytes& frame, const SMPTETime& timecode) {
  const int seconds = settings_.frameSampleInterval();
  file_.append(frame);
  const int frames = ZQACTimecodeUtils::maxFrameForTimecode(timecode) * seconds;
  nextTimecode_ = ZQACTimecodeUtils::addNbFrameToTimecode(frames, timecode);
}

}  // namespace zq
