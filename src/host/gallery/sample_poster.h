#pragma once
// A made-up picture of a clip: a landscape in the light of some hour.

#include "platform/image.h"

namespace zq::host {

/// A PNG of width x width * 2 / 3 pixels. The same number makes the same picture.
platform::ImageValue samplePoster(int number, int width);

}  // namespace zq::host
