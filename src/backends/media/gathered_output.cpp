#include "backends/media/gathered_output.h"

#include <algorithm>

namespace zq::media {

GatheredOutput::GatheredOutput(OutputFile& file) : file_(file) {
  waiting_.reserve(kPiece);
}

Status GatheredOutput::append(std::span<const std::uint8_t> bytes) {
  while (!bytes.empty()) {
    const auto fitting = bytes.first(std::min(bytes.size(), kPiece - waiting_.size()));
    waiting_.insert(waiting_.end(), fitting.begin(), fitting.end());
    bytes = bytes.subspan(fitting.size());
    if (waiting_.size() < kPiece) break;
    if (Status status = flush(); !status.ok()) return status;
  }
  return {};
}

Status GatheredOutput::flush() {
  if (waiting_.empty()) return {};
  Status status = file_.writeAt(file_.size(), waiting_);
  waiting_.clear();
  return status;
}

}  // namespace zq::media
