#include "backends/deck/frame_pool.h"

#include "dv/dv_constants.h"

namespace zq::backend {

std::shared_ptr<FramePool::Buffer> FramePool::freeBuffer() {
  for (const std::shared_ptr<Buffer>& buffer : buffers_) {
    // Pairs with the release by the last handle: what was read from the old frame is done before it is filled anew.
    if (!buffer->inUse.load(std::memory_order_acquire)) return buffer;
  }
  buffers_.push_back(std::make_shared<Buffer>());
  buffers_.back()->bytes.resize(FRAME_SIZE_625_50);
  return buffers_.back();
}

Expected<SharedBytes> FramePool::take(std::size_t size, const std::function<Status(std::span<std::uint8_t>)>& fill) {
  const std::shared_ptr<Buffer> buffer = freeBuffer();
  if (buffer->bytes.size() < size) buffer->bytes.resize(size);
  const std::span<std::uint8_t> bytes = std::span(buffer->bytes).first(size);
  if (Status status = fill(bytes); !status.ok()) return status.error();
  buffer->inUse.store(true, std::memory_order_relaxed);
  const std::shared_ptr<const void> owner(
      buffer->bytes.data(), [buffer](const void*) { buffer->inUse.store(false, std::memory_order_release); });
  return SharedBytes(owner, bytes);
}

}  // namespace zq::backend
