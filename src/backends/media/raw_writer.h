#pragma once
// Writes a clip as raw DV: its frames laid end to end and nothing else.

#include <cstddef>
#include <memory>

#include "backends/media/output_file.h"
#include "platform/movie_writer.h"

namespace zq::media {

/// A frame that did not fit is cut off again. finish() deletes a file that has no frame, and that is no error.
class RawWriter : public platform::MovieWriter {
 public:
  explicit RawWriter(std::unique_ptr<OutputFile> file);

  Status append(const platform::QTSampleBuffer& frame) override;
  Status finish() override;

 private:
  const std::unique_ptr<OutputFile> file_;
  // Of the first frame; 0 before it.
  std::size_t frameSize_ = 0;
};

}  // namespace zq::media
