#pragma once
// Where the frames of a tape image lie. Found as far as it is asked for, so that a long tape opens at once.

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "backends/deck/tape_file.h"
#include "dv/dv_system.h"

namespace zq::backend {

struct FrameLocation {
  std::int64_t frame = 0;
  std::uint64_t offset = 0;
  DVSystem system = DVSystem::pal625_50;

  std::uint64_t end() const { return offset + frameSizeOf(system); }
};

/// One thread at a time.
class FrameIndex {
 public:
  /// Recognises raw 25 Mbit/s DV; else an error that says what the file is instead.
  static Expected<FrameIndex> open(std::shared_ptr<TapeFile> file);

  /// Frame `frame` (from 0), or nothing when the tape has fewer whole frames. The error is that of reading the file.
  Expected<std::optional<FrameLocation>> locate(std::int64_t frame);

  /// The location after `last`, as the file's headers tell; for readers that go through a tape frame by frame.
  Expected<std::optional<FrameLocation>> following(const FrameLocation& last) const;

  const TapeFile& file() const { return *file_; }

 private:
  /// Frames of one system that lie one after the other.
  struct Run {
    FrameLocation first;
    std::int64_t count = 0;
  };

  FrameIndex(std::shared_ptr<TapeFile> file, DVSystem firstSystem);
  Expected<std::optional<FrameLocation>> frameAt(std::uint64_t offset, std::int64_t frame, DVSystem before) const;
  DVSystem systemByWhatFollows(std::uint64_t offset, DVSystem likely, DVSystem before, bool hasHeader) const;
  void append(const FrameLocation& location);
  FrameLocation lastKnown() const;

  std::shared_ptr<TapeFile> file_;
  DVSystem firstSystem_;
  std::vector<Run> runs_;
};

/// A tape image that was recognised, and its first frame.
struct OpenTape {
  std::shared_ptr<TapeFile> file;
  FrameIndex index;
  FrameLocation first;
};

/// Refuses what is no tape image, or has no whole frame, with an error that says what it is instead.
Expected<OpenTape> openTape(const std::string& path);

}  // namespace zq::backend
