#pragma once
// Reading the texts of a list: plain files, timecodes, dates.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "base/calendar_date.h"
#include "base/status.h"
#include "timecode/smpte_time.h"

namespace zq::host {

/// The whole file, without a byte order mark. An error when it cannot be read, or is larger than any list is.
Expected<std::string> readListFile(const std::string& path);

/// Whether it is UTF-8, and without the zero byte, which no text has.
bool isPlainText(std::string_view text);
/// Without blanks at both ends.
std::string_view trimmed(std::string_view text);
/// With the letters A to Z, and only those, made small.
std::string lowered(std::string_view text);

/// Four numbers with ":" between them; before the frames ";" or "." too, as lists in drop frame write it. Nothing when
/// it is not that; the numbers may be beyond those of a clock.
std::optional<SMPTETime> timecodeOf(std::string_view text);
/// "YYYY-MM-DDTHH:MM:SS"; null when it is not that, or no day of the calendar.
DateValue dateOf(std::string_view text);

/// Frames since 00:00:00:00.
std::int64_t framesTo(const SMPTETime& timecode, int timebase);
/// With the system of the timebase, 25 or 30.
SMPTETime timecodeAt(std::int64_t frames, int timebase);

}  // namespace zq::host
