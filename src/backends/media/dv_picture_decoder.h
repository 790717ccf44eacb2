#pragma once
// Decodes the pictures of a tape's frames, one for each frame whatever became of it on the way.

#include <cstdint>
#include <memory>
#include <span>

#include "base/status.h"
#include "dv/dv_system.h"

struct AVFrame;

namespace zq::media {

class DVPictureDecoder {
 public:
  static Expected<std::unique_ptr<DVPictureDecoder>> create(DVSystem system);
  ~DVPictureDecoder();

  struct Decoded {
    /// Two fields, the bottom one first; the caller's to reference until the next call.
    const AVFrame& picture;
    /// False when it is the picture before, or a black one at the start, since the frame has none.
    bool isItsOwn = true;
  };
  Decoded decode(std::span<const std::uint8_t> frame);

 private:
  struct Context;
  explicit DVPictureDecoder(std::unique_ptr<Context> context);

  const std::unique_ptr<Context> context_;
};

}  // namespace zq::media
