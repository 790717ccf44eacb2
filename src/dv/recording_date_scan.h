#pragma once
// The recording date of a frame: that of the first of its sequences that has one.

#include <cstdint>
#include <functional>
#include <memory>

#include "base/calendar_date.h"
#include "base/log.h"
#include "base/shared_bytes.h"

namespace zq {

class DVFrameCaptureDateTime;

struct RecordingDateScan {
  /// Null when no scanned sequence has both a date and a time.
  DateValue date;
  /// That of the last sequence decoded, which is the dated one if there is one; 0 when none was.
  std::int32_t aspectRatio = 0;
  /// The decoder ran past the end of the frame: a short buffer, or a sequence number that the frame does not hold.
  bool outOfRange = false;
  /// The numbers behind `date`, for isPossibleDate; null when `date` is.
  std::shared_ptr<DVFrameCaptureDateTime> captureDateTime;
};

/// Called with the index of each sequence before it is decoded, by a reader that fetches sequences as they are needed.
using BeforeSequence = std::function<void(std::uint32_t index)>;

/// Never throws for what is in a frame. `log` may be null.
RecordingDateScan scanRecordingDate(const SharedBytes& frame, Log* log = nullptr,
                                    const BeforeSequence& beforeSequence = {});

/// Whether month, day of the month, hour, minute and second are within their ranges. What a camcorder with an unset
/// clock or a damaged tape yields is not, and still becomes a date by carrying over.
bool isPossibleDate(const DVFrameCaptureDateTime& dateTime);

}  // namespace zq
