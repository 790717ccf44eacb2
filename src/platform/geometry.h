#pragma once
// Places and colours in a view. The origin is the lower left corner, y grows upwards.

namespace zq::platform {

struct Rect {
  float x = 0;
  float y = 0;
  float width = 0;
  float height = 0;

  bool operator==(const Rect&) const = default;
};

/// Device RGB and alpha, 0 to 1 each.
struct Color {
  float red = 0;
  float green = 0;
  float blue = 0;
  float alpha = 1;

  bool operator==(const Color&) const = default;
};

}  // namespace zq::platform
