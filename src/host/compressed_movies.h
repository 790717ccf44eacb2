#pragma once
// How a recapture's movies are compressed, and how it is known what is in them: they cannot be read back as DV.

#include <cstdint>
#include <functional>
#include <string>

#include "base/status.h"
#include "host/frame_witness.h"

namespace zq::host {

/// Of movies as received, as it is at first.
struct CompressedMovies {
  /// The number of the choice in the controller's list, and the picture size of a custom one.
  int choice = 0;
  int sizeTag = 0;
  /// What makes the writers, and is asked which frames a file was given. Null for movies as received.
  FrameWitness* witness = nullptr;
  /// The pictures in a finished file.
  std::function<Expected<std::int64_t>(const std::string& path)> countPictures;
  /// For each frame that was given; 0 when it is not known.
  int picturesPerFrame = 1;

  bool areCompressed() const { return witness != nullptr; }
};

}  // namespace zq::host
