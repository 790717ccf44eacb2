#include "backends/media/av_output.h"

#include "backends/media/output_file.h"

extern "C" {
#include <libavformat/avio.h>
#include <libavutil/error.h>
#include <libavutil/mem.h>
}

#include <cstdio>
#include <new>
#include <span>

namespace zq::media {
namespace {

constexpr int kBufferSize = 1 << 16;

}  // namespace

AvOutput::AvOutput(OutputFile& file) : file_(file) {
  auto* buffer = static_cast<unsigned char*>(av_malloc(kBufferSize));
  context_ = avio_alloc_context(buffer, kBufferSize, 1, this, nullptr, &AvOutput::write, &AvOutput::seek);
  if (!buffer || !context_) throw std::bad_alloc();
  // A picture goes from the frame's own memory to the file; only the small fields of the container are gathered.
  context_->direct = 1;
}

AvOutput::~AvOutput() {
  av_freep(&context_->buffer);
  avio_context_free(&context_);
}

Status AvOutput::flush() {
  avio_flush(context_);
  if (firstError_) return *firstError_;
  return {};
}

int AvOutput::write(void* self, std::uint8_t* bytes, int count) {
  auto& output = *static_cast<AvOutput*>(self);
  const Status written = output.file_.writeAt(output.position_, std::span(bytes, static_cast<std::size_t>(count)));
  // libavformat counts on after a failure too; an index that is written later must still land where it says it is.
  output.position_ += count;
  if (written.ok()) return count;
  if (!output.firstError_) output.firstError_ = written.error();
  return AVERROR(EIO);
}

std::int64_t AvOutput::seek(void* self, std::int64_t offset, int whence) {
  auto& output = *static_cast<AvOutput*>(self);
  switch (whence & ~AVSEEK_FORCE) {
    case AVSEEK_SIZE:
      return output.file_.size();
    case SEEK_SET:
      break;
    case SEEK_CUR:
      offset += output.position_;
      break;
    case SEEK_END:
      offset += output.file_.size();
      break;
    default:
      return AVERROR(EINVAL);
  }
  if (offset < 0) return AVERROR(EINVAL);
  output.position_ = offset;
  return offset;
}

}  // namespace zq::media
