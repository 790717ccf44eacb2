#pragma once
// A file that is written from front to back in large pieces.

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "backends/media/output_file.h"

namespace zq::media {

/// The system keeps what it was given in one piece in one piece of memory, so a file that was written this way is read
/// back at half the cost. For files that nobody misses when the program ends before its time: up to a piece of them
/// waits in memory.
class GatheredOutput {
 public:
  static constexpr std::size_t kPiece = std::size_t{2} << 20U;

  /// `file` is empty and outlives this object.
  explicit GatheredOutput(OutputFile& file);
  Status append(std::span<const std::uint8_t> bytes);
  /// Writes what still waits.
  Status flush();

 private:
  OutputFile& file_;
  std::vector<std::uint8_t> waiting_;
};

}  // namespace zq::media
