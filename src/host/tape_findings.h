#pragma once
// What on a tape its owner should look at: frames without date or timecode, dates that cannot be, damage.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "dv/recording_date_scan.h"
#include "platform/sample_buffer.h"

namespace zq::host {

/// What one frame of a tape turned out to hold.
struct FrameFacts {
  std::int64_t frame = 0;
  bool hasTimecode = false;
  bool hasDate = false;
  /// Carries a date that no calendar has: month 0, day 39, an unset clock.
  bool impossibleDate = false;
  /// The decoder ran past the end of the frame.
  bool outOfRange = false;
  /// The frame does not begin as a DV frame does: zeros, noise.
  bool badHeader = false;
};

FrameFacts factsOf(std::int64_t frame, bool hasTimecode, const RecordingDateScan& scan, const SharedBytes& bytes);

/// One thread at a time.
class TapeFindings {
 public:
  void add(const FrameFacts& facts);
  void setTrailingBytes(std::uint64_t bytes) { trailingBytes_ = bytes; }
  std::uint64_t trailingBytes() const { return trailingBytes_; }
  /// A line for each thing found, with how many frames and the first of them; empty for a tape without blemish.
  std::vector<std::string> lines() const;

 private:
  struct Count {
    std::int64_t frames = 0;
    std::int64_t first = 0;
    void add(std::int64_t frame);
  };
  std::string line(const Count& count, const std::string& what) const;

  std::int64_t frames_ = 0;
  Count undated_;
  Count untimed_;
  Count impossible_;
  Count outOfRange_;
  Count badHeader_;
  std::uint64_t trailingBytes_ = 0;
};

}  // namespace zq::host
