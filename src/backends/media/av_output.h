#pragma once
// What libavformat writes through: an output file, which large writes reach without being copied on the way.

#include <cstdint>
#include <optional>

#include "base/status.h"

struct AVIOContext;

namespace zq::media {

class OutputFile;

class AvOutput {
 public:
  /// `file` outlives this.
  explicit AvOutput(OutputFile& file);
  ~AvOutput();
  AvOutput(const AvOutput&) = delete;
  AvOutput& operator=(const AvOutput&) = delete;

  AVIOContext* context() const { return context_; }
  /// Hands everything to the file. The first error of any write since the start, which libavformat knows only as a
  /// number.
  Status flush();

 private:
  static int write(void* self, std::uint8_t* bytes, int count);
  static std::int64_t seek(void* self, std::int64_t offset, int whence);

  OutputFile& file_;
  AVIOContext* context_;
  std::int64_t position_ = 0;
  std::optional<Error> firstError_;
};

}  // namespace zq::media
