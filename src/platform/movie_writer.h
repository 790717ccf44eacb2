#pragma once
// Writing one movie file.

#include <cstdint>
#include <memory>
#include <string>

#include "base/status.h"
#include "platform/compression.h"
#include "platform/sample_buffer.h"

namespace zq::platform {

/// One thread at a time. The frames of one file are of one system.
class MovieWriter {
 public:
  virtual ~MovieWriter() = default;
  /// Writes one frame, its picture and its sound. An error leaves what was written before it intact;
  /// finish() still completes the file.
  virtual Status append(const QTSampleBuffer& frame) = 0;
  /// Completes the file on disk. No call follows.
  virtual Status finish() = 0;
};

class MovieWriterFactory {
 public:
  virtual ~MovieWriterFactory() = default;
  /// Creates the file, whose extension chooses the format; an existing file is an error and stays as it is. Pictures
  /// are written as received without `compression`.
  virtual Expected<std::unique_ptr<MovieWriter>> create(
      const std::string& path, const std::shared_ptr<const QTCompressionOptions>& compression) = 0;
};

}  // namespace zq::platform
