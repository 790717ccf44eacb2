#pragma once
// Makes a clip's poster: one DV frame as a small JPEG picture.

#include <cstdint>
#include <vector>

#include "base/shared_bytes.h"
#include "base/status.h"
#include "dv/dv_constants.h"

namespace zq::media {

class PosterMaker {
 public:
  /// In pixels: twice the points that posters are shown at.
  static constexpr int kWidth = 120;
  static constexpr int kHeight = 80;

  /// The whole picture of a 25 Mbit/s frame in its shape, between black bars; the bytes of a JPEG file, the same ones
  /// for the same frame. An aspect-ratio code that says neither 16:9 nor 4:3 leaves the shape to the frame itself. A
  /// damaged frame gives the picture that can be made out; one that is no DV frame is an error.
  Expected<std::vector<std::uint8_t>> make(const SharedBytes& frame, DVAspectRatio aspectRatio) const;
};

}  // namespace zq::media
