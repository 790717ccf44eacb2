#pragma once
// Goes through a tape image and says what each frame is, reading only the blocks that tell.

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "backends/deck/frame_index.h"
#include "backends/deck/tape_file.h"
#include "base/calendar_date.h"
#include "host/tape_findings.h"
#include "platform/runtime.h"
#include "timecode/smpte_time.h"

namespace zq::host {

struct FrameRecord {
  std::int64_t frame = 0;
  std::uint64_t offset = 0;
  DVSystem system = DVSystem::pal625_50;
  std::optional<SMPTETime> timecode;
  DateValue recordingDate;
  std::int32_t aspectRatio = 0;
  FrameFacts facts;
};

/// Reads with two threads. What it hands out is in the order of the tape.
class TapeInspector {
 public:
  static Expected<std::unique_ptr<TapeInspector>> open(const std::string& path, platform::Runtime& runtime);

  DVSystem system() const { return first_.system; }
  /// Calls `take` for each run of frames with their records and what `format`, which is called on any thread, made of
  /// them. Returns the error that ended it early.
  using Formatter = std::function<std::string(std::span<const FrameRecord>)>;
  using Taker = std::function<void(std::span<const FrameRecord>, const std::string& formatted)>;
  Status run(const Formatter& format, const Taker& take);
  /// After run(): bytes behind the last whole frame.
  std::uint64_t trailingBytes() const { return trailingBytes_; }

 private:
  /// Frames that lie one after the other, all of one system as far as the first one tells.
  struct Chunk {
    backend::FrameLocation first;
    bool firstIsKnown = false;  // the index has placed it, so its header need not bear it out
    std::int64_t wanted = 0;
    std::vector<FrameRecord> records;
    std::string formatted;
    Status status;

    bool isComplete() const { return static_cast<std::int64_t>(records.size()) == wanted; }
  };

  TapeInspector(std::shared_ptr<backend::TapeFile> file, backend::FrameIndex index, backend::FrameLocation first,
                platform::Runtime& runtime);
  static void readChunk(const backend::TapeFile& file, Chunk& chunk, const Formatter& format);
  void readChunks(Chunk& one, Chunk& other, const Formatter& format);
  Status dropWrongLast(std::vector<Chunk*>& chunks, const Formatter& format) const;
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
