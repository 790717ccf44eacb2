#pragma once
// Compresses pictures to DV frames. A frame made here has no sound, timecode or date yet.

#include <cstdint>
#include <functional>
#include <memory>
#include <span>

#include "backends/media/scene_painter.h"
#include "base/status.h"
#include "dv/dv_system.h"

namespace zq::media {

class DVPictureEncoder {
 public:
  static Expected<std::unique_ptr<DVPictureEncoder>> create(DVSystem system, bool wideScreen);
  ~DVPictureEncoder();

  /// Lets `paint` fill the picture and compresses it. The frame is the caller's to change until the next call.
  Expected<std::span<std::uint8_t>> encode(const std::function<void(const PicturePlanes&)>& paint);

 private:
  struct Context;
  explicit DVPictureEncoder(std::unique_ptr<Context> context);

  const std::unique_ptr<Context> context_;
};

}  // namespace zq::media
