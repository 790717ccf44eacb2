#include "host/gallery/sample_player.h"

#include <chrono>

namespace zq::host {

namespace {

constexpr std::chrono::milliseconds kFrame(40);

}  // namespace

SamplePlayer::SamplePlayer(platform::Executor& mainLoop, TapeScene& scene) : mainLoop_(mainLoop), scene_(scene) {
  playNextFrame();
}

SamplePlayer::~SamplePlayer() {
  timer_->invalidate();
}

void SamplePlayer::playNextFrame() {
  const ClipValue clip = scene_.timeline().currentClip();
  frame_ = clip == clip_ ? frame_ + 1 : 0;
  clip_ = clip;
  if (clip && frame_ >= clip->durationInFrame()) frame_ = 0;
  if (clip) scene_.play(clip, frame_, clip->isRecapture() && !clip->isRecaptureFinished());
  timer_ = mainLoop_.startTimer(kFrame, [this] { playNextFrame(); });
}

}  // namespace zq::host
