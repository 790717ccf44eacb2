#pragma once
// Goes through a tape image and says what each frame is, reading only the blocks that tell.

#include <cstdint>
#include <memory>
#include <string>

#include "backends/deck/frame_index.h"
#include "backends/deck/tape_file.h"
#include "host/inspection_go.h"
#include "platform/runtime.h"

namespace zq::host {

/// Reads with two threads. What it hands out is in the order of the tape.
class TapeInspector {
 public:
  static Expected<std::unique_ptr<TapeInspector>> open(const std::string& path, platform::Runtime& runtime);

  DVSystem system() const { return first_.system; }
  /// Calls `take` for each run of frames with their records and what `format` made of them. Returns the error that
  /// ended it early.
  Status run(const FrameFormatter& format, const FrameTaker& take);
  /// After run(): bytes behind the last whole frame.
  std::uint64_t trailingBytes() const { return trailingBytes_; }

 private:
  TapeInspector(std::shared_ptr<backend::TapeFile> file, backend::FrameIndex index, backend::FrameLocation first,
                platform::Runtime& runtime);
  void read(InspectionGo& go) const;
  std::int64_t wholeFramesFrom(const backend::FrameLocation& location) const;

  // Constant after construction.
  const std::shared_ptr<backend::TapeFile> file_;
  const std::shared_ptr<const backend::TapeFile> sameFile_;  // for the second thread; may be null
  const backend::FrameIndex index_;
  const backend::FrameLocation first_;
  platform::Runtime& runtime_;

  std::uint64_t trailingBytes_ = 0;
};

}  // namespace zq::host
