#pragma once
// A stretch of a tape that two threads read at once, under the guess that all its frames are of one system.

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "backends/deck/frame_index.h"
#include "backends/deck/tape_file.h"
#include "host/frame_record.h"
#include "host/frame_run.h"

namespace zq::host {

/// Called on any thread.
using FrameFormatter = std::function<std::string(std::span<const FrameRecord>)>;
using FrameTaker = std::function<void(std::span<const FrameRecord>, const std::string& formatted)>;

/// Where frames lie is found from frame to frame, so it cannot be known ahead. A header that does not bear the guess
/// out ends the go before its frame; a header that does bears out the frame before it too.
class InspectionGo {
 public:
  /// `frames` whole frames from `first` on, which the index has placed. The functions outlive this object.
  InspectionGo(const backend::FrameLocation& first, std::int64_t frames, const FrameFormatter& format,
               const FrameTaker& take);

  bool isForTwo() const { return pieces_.size() > 1; }
  /// Reads pieces until none is left. On two threads, each with a file of its own; `afterEach` is called after each
  /// piece.
  void read(const backend::TapeFile& file, const std::function<void()>& afterEach);
  /// Hands out, in the order of the tape, what has been read and borne out. On one thread.
  void takeReady();
  /// After reading has ended on both threads: hands out the rest. The last frame is asked of the index, as it has none
  /// behind it.
  Status takeRest(const backend::FrameIndex& index);

  /// Then: the last frame handed out, or the first if there was none, and whether the guess held to the end.
  const backend::FrameLocation& last() const { return last_; }
  bool guessHeld() const { return guessHeld_; }

 private:
  struct Piece {
    FrameRun run;
    std::string formatted;
    std::atomic<bool> isRead = false;
  };

  Status dropWrongLast(const backend::FrameIndex& index);
  void take(Piece& piece);

  const FrameFormatter& format_;
  const FrameTaker& take_;
  std::vector<Piece> pieces_;  // each belongs to the thread that reads it, until isRead
  std::atomic<std::size_t> next_ = 0;
  std::atomic<bool> isWrong_ = false;

  // Of the thread that takes.
  std::size_t taken_ = 0;  // pieces
  backend::FrameLocation last_;
  bool guessHeld_ = false;
};

}  // namespace zq::host
