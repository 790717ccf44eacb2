#pragma once
// An archive in a vector of bytes.

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "dv/archive.h"

namespace zq::test {

class MemoryArchiveWriter final : public ArchiveWriter {
 public:
  void writeInt32(std::int32_t value) override {
    for (unsigned shift = 0; shift < 32; shift += 8) {
      writeByte(static_cast<std::uint8_t>(static_cast<std::uint32_t>(value) >> shift & 0xFFU));
    }
  }
  void writeByte(std::uint8_t value) override { bytes_.push_back(value); }

  const std::vector<std::uint8_t>& bytes() const { return bytes_; }

 private:
  std::vector<std::uint8_t> bytes_;
};

/// Throws std::out_of_range when it is read past its end.
class MemoryArchiveReader final : public ArchiveReader {
 public:
  explicit MemoryArchiveReader(std::vector<std::uint8_t> bytes) : bytes_(std::move(bytes)) {}

  std::int32_t readInt32() override {
    std::uint32_t value = 0;
    for (unsigned shift = 0; shift < 32; shift += 8) value |= static_cast<std::uint32_t>(readByte()) << shift;
    return static_cast<std::int32_t>(value);
  }
  std::uint8_t readByte() override { return bytes_.at(next_++); }

  bool atEnd() const { return next_ == bytes_.size(); }

 private:
  std::vector<std::uint8_t> bytes_;
  std::size_t next_ = 0;
};

}  // namespace zq::test
