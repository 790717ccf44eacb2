#pragma once
// How the command line writes timecodes and dates, in tables and in JSON.

#include <cstdint>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>

#include "base/calendar_date.h"
#include "timecode/smpte_time.h"

namespace zq::host {

/// "HH:MM:SS:FF", or "" for none.
std::string textOf(const std::optional<SMPTETime>& timecode);
std::string textOf(const TimecodeValue& timecode);
/// "YYYY-MM-DDTHH:MM:SS", or "" for none.
std::string textOf(const DateValue& date);
/// "1 frame", "2 frames".
std::string counted(std::int64_t count, const std::string& what);
/// The text, or null where it is empty.
nlohmann::ordered_json jsonOf(const std::string& text);

/// Whether the text can be written as JSON.
bool isUtf8(const std::string& text);

}  // namespace zq::host
