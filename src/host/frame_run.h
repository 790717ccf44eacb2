#pragma once
// Frames that lie one after the other on a tape image, as far as the first one tells.

#include <cstdint>
#include <vector>

#include "backends/deck/frame_index.h"
#include "backends/deck/sparse_frame.h"
#include "base/status.h"
#include "host/frame_record.h"

namespace zq::host {

struct FrameRun {
  backend::FrameLocation first;
  /// The index has placed the first frame, so its header need not bear it out.
  bool firstIsKnown = false;
  std::int64_t wanted = 0;
  std::vector<FrameRecord> records;
  Status status;

  bool isComplete() const { return static_cast<std::int64_t>(records.size()) == wanted; }
};

/// The place of the frame that lies `frames` after `first` if all between are of one system.
backend::FrameLocation placeAfter(const backend::FrameLocation& first, std::int64_t frames);

/// Fills the records. Stops before the first frame whose header is not one of the run's system, which means that the
/// guess was wrong there, and at the first that cannot be read, which is in the status.
void readRun(backend::SparseFrame& sparse, FrameRun& run);

}  // namespace zq::host
