#pragma once
// A rectangle that one thread sets while others read it.

#include <atomic>
#include <cstdint>

#include "platform/geometry.h"

namespace zq {

/// The main thread lays clips out; the thread that delivers frames reads where they lie. A reader gets a rectangle that
/// was set as one, never half of an older one.
class SharedRect {
 public:
  /// One thread only.
  void set(const platform::Rect& rect) {
    ++version_;  // odd: being written
    x_ = rect.x;
    y_ = rect.y;
    width_ = rect.width;
    height_ = rect.height;
    ++version_;
  }

  /// From any thread.
  platform::Rect get() const {
    for (;;) {
      const std::uint32_t before = version_;
      const platform::Rect rect{x_, y_, width_, height_};
      if (before % 2 == 0 && version_ == before) return rect;
    }
  }

 private:
  std::atomic<std::uint32_t> version_ = 0;
  std::atomic<float> x_ = 0;
  std::atomic<float> y_ = 0;
  std::atomic<float> width_ = 0;
  std::atomic<float> height_ = 0;
};

}  // namespace zq
