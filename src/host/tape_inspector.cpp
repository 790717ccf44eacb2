#include "host/tape_inspector.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "dv/dv_system.h"

namespace zq::host {

using backend::FrameIndex;
using backend::FrameLocation;
using backend::TapeFile;

namespace {

// Frames that are read in one go. After a guess went wrong goes are short, so that little is read in vain on a tape
// with many damaged headers.
constexpr std::int64_t kFirstGo = 16384;
constexpr std::int64_t kLongestGo = 32768;
constexpr std::int64_t kShortestGo = 256;

}  // namespace

Expected<std::unique_ptr<TapeInspector>> TapeInspector::open(const std::string& path, platform::Runtime& runtime) {
  auto tape = backend::openTape(path);
  if (!tape.ok()) return tape.error();
  backend::OpenTape& opened = tape.value();
  return std::unique_ptr<TapeInspector>(new TapeInspector(opened.file, std::move(opened.index), opened.first, runtime));
}

TapeInspector::TapeInspector(std::shared_ptr<TapeFile> file, FrameIndex index, FrameLocation first,
                             platform::Runtime& runtime)
    : file_(std::move(file)),
      sameFile_(file_->openedAgain()),
      index_(std::move(index)),
      first_(first),
      runtime_(runtime) {}

std::int64_t TapeInspector::wholeFramesFrom(const FrameLocation& location) const {
  return static_cast<std::int64_t>((file_->size() - location.offset) / frameSizeOf(location.system));
}

Status TapeInspector::run(const FrameFormatter& format, const FrameTaker& take) {
  std::optional<FrameLocation> here = first_;
  std::int64_t length = kFirstGo;
  while (here) {
    InspectionGo go(*here, std::min(length, wholeFramesFrom(*here)), format, take);
    read(go);
    if (Status status = go.takeRest(index_); !status.ok()) return status;
    length = go.guessHeld() ? std::min(length * 2, kLongestGo) : kShortestGo;
    auto next = index_.following(go.last());
    if (!next.ok()) return next.error();
    here = next.value();
    if (!here) trailingBytes_ = file_->size() - go.last().end();
  }
  return {};
}

void TapeInspector::read(InspectionGo& go) const {
  if (!go.isForTwo()) return go.read(*file_, [] {});
  const TapeFile& beside = sameFile_ ? *sameFile_ : *file_;
  const auto thread = runtime_.startThread("inspector", [&] { go.read(beside, [] {}); });
  go.read(*file_, [&] { go.takeReady(); });
  thread->join();
}

}  // namespace zq::host
