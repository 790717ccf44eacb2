#include "host/text.h"

#include <nlohmann/json.hpp>

#include "timecode/timecode_text.h"

namespace zq::host {

std::string textOf(const std::optional<SMPTETime>& timecode) {
  return timecode ? timecodeText(*timecode) : "";
}

std::string textOf(const TimecodeValue& timecode) {
  return timecode ? timecodeText(*timecode) : "";
}

std::string textOf(const DateValue& date) {
  return date ? date->isoString() : "";
}

std::string counted(std::int64_t count, const std::string& what) {
  return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

nlohmann::ordered_json jsonOf(const std::string& text) {
  return text.empty() ? nlohmann::ordered_json(nullptr) : nlohmann::ordered_json(text);
}

bool isUtf8(const std::string& text) {
  const auto kept = nlohmann::json(text).dump(-1, ' ', false, nlohmann::json::error_handler_t::ignore);
  return nlohmann::json::parse(kept) == nlohmann::json(text);
}

}  // namespace zq::host
