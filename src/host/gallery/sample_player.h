#pragma once
// Plays the clip that is picked in the views of a tape, over and over, as a deck would.

#include <memory>

#include "host/gallery/tape_scene.h"
#include "platform/executor.h"

namespace zq::host {

class SamplePlayer {
 public:
  /// Both outlive it.
  SamplePlayer(platform::Executor& mainLoop, TapeScene& scene);
  ~SamplePlayer();
  SamplePlayer(const SamplePlayer&) = delete;
  SamplePlayer& operator=(const SamplePlayer&) = delete;

 private:
  void playNextFrame();

  platform::Executor& mainLoop_;
  TapeScene& scene_;
  ClipValue clip_;
  int frame_ = 0;
  std::shared_ptr<platform::Timer> timer_;
};

}  // namespace zq::host
