#pragma once
// Where a value writes its fields one after the other, without keys, and reads them back in the same order.

#include <cstdint>

namespace zq {

class ArchiveWriter {
 public:
  virtual ~ArchiveWriter() = default;
  virtual void writeInt32(std::int32_t value) = 0;
  virtual void writeByte(std::uint8_t value) = 0;
};

class ArchiveReader {
 public:
  virtual ~ArchiveReader() = default;
  virtual std::int32_t readInt32() = 0;
  virtual std::uint8_t readByte() = 0;
};

}  // namespace zq
