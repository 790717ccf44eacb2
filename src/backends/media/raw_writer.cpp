#include "backends/media/raw_writer.h"

#include <utility>

#include "backends/media/movie_text.h"
#include "dv/dv_system.h"

namespace zq::media {

RawWriter::RawWriter(std::unique_ptr<OutputFile> file) : file_(std::move(file)) {}

Status RawWriter::append(const platform::QTSampleBuffer& frame) {
  const std::size_t size = frame.lengthForAllSamples();
  if (!systemOfFrameSize(size) || (frameSize_ != 0 && frameSize_ != size)) return wrongFrameSize(file_->path(), size);
  frameSize_ = size;
  const std::int64_t end = file_->size();
  Status written = file_->writeAt(end, frame.bytesForAllSamples.bytes());
  // A part of a frame at the end would put every program out of step that goes through the file by frame size.
  if (!written.ok()) static_cast<void>(file_->cutTo(end));
  return written;
}

Status RawWriter::finish() {
  return file_->size() == 0 ? file_->remove() : file_->close();
}

}  // namespace zq::media
