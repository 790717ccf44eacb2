#pragma once
// Buffers for the frames that are under way, used again when the last handle of a frame has gone.

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <vector>

#include "base/shared_bytes.h"
#include "base/status.h"

namespace zq::backend {

/// Frames are taken by one thread at a time; their handles may go on any. Few buffers serve a long tape, and they stay
/// in the processor's cache: read there and written from there, a frame costs less than one that is mapped from the
/// file.
class FramePool {
 public:
  /// A frame of `size` bytes, filled by `fill`.
  Expected<SharedBytes> take(std::size_t size, const std::function<Status(std::span<std::uint8_t>)>& fill);
  std::size_t bufferCount() const { return buffers_.size(); }

 private:
  struct Buffer {
    std::vector<std::uint8_t> bytes;
    std::atomic<bool> inUse{false};
  };
  std::shared_ptr<Buffer> freeBuffer();

  std::vector<std::shared_ptr<Buffer>> buffers_;
};

}  // namespace zq::backend
