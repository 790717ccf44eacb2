#pragma once
// An immutable run of bytes, shared from the backend that read it to the file that keeps it. Copying one copies a
// handle.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

namespace zq {

class SharedBytes {
 public:
  /// Holds no buffer; different from a buffer of no bytes.
  SharedBytes() = default;

  /// A view of `bytes`, which stay valid and unchanged for as long as `owner` lives.
  SharedBytes(std::shared_ptr<const void> owner, std::span<const std::uint8_t> bytes);

  /// A buffer of its own with these bytes.
  static SharedBytes copyOf(std::span<const std::uint8_t> bytes);

  explicit operator bool() const { return owner_ != nullptr; }
  std::size_t size() const { return bytes_.size(); }
  const std::uint8_t* data() const { return bytes_.data(); }
  std::span<const std::uint8_t> bytes() const { return bytes_; }

  /// Copies destination.size() bytes from `start` on. Throws std::out_of_range, with nothing copied, when the range
  /// does not lie inside the buffer.
  void getBytes(std::span<std::uint8_t> destination, std::size_t start) const {
    if (start > bytes_.size() || destination.size() > bytes_.size() - start) throwOutOfRange();
    std::copy_n(bytes_.data() + start, destination.size(), destination.data());
  }

  /// Whether both are handles of one buffer (identity, not equal content).
  bool sameBufferAs(const SharedBytes& other) const {
    return owner_ == other.owner_ && bytes_.data() == other.bytes_.data() && bytes_.size() == other.bytes_.size();
  }

  /// How many handles hold the owner; for tests of who keeps a frame alive.
  long useCount() const { return owner_.use_count(); }

 private:
  [[noreturn]] static void throwOutOfRange();

  std::shared_ptr<const void> owner_;
  std::span<const std::uint8_t> bytes_;
};

}  // namespace zq
