#include "catalogue/clip.h"

#include <utility>

#include "timecode/timecode_utils.h"

namespace zq {
namespace {

std::int32_t timebaseOf(const ClipRecord& record) {
  if (record.timebase != 0) return record.timebase;
  return ZQACTimecodeUtils::maxFrameForTimecode(record.startTimecode ? *record.startTimecode : nullTimecode);
}

// Whole seconds only: recording dates have no fractions to compare with.
DateValue endOf(const DateValue& start, std::int32_t frames, std::int32_t timebase) {
  if (!start) return nullptr;
  const auto seconds = static_cast<std::int64_t>(start->timeIntervalSinceReferenceDate()) + frames / timebase;
  return std::make_shared<const CalendarDate>(CalendarDate::fromReferenceSeconds(seconds));
}

}  // namespace

ZQACClip::ZQACClip(ClipRecord record)
    : record_(std::move(record)),
      timebase_(timebaseOf(record_)),
      durationInFrame_(ZQACTimecodeUtils::timecodeValueAsFramesWithTimebase(record_.duration, timebase_)),
      dateEndClip_(endOf(record_.startDate, durationInFrame_, timebase_)) {}

std::string ZQACClip::recapturePath() const {
  return record_.recapturePath + "/" + record_.clipId + ".mov";
}

}  // namespace zq
