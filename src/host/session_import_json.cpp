#include "host/session_import_json.h"

#include <fmt/format.h>

#include <limits>
#include <nlohmann/json.hpp>
#include <utility>

#include "host/batch_list_text.h"

namespace zq::host {

using nlohmann::json;

JsonObject::JsonObject(const json& value, std::string where) : value_(value), where_(std::move(where)) {
  if (!value_.is_object()) throw WrongJson{where_ + " is not an object"};
}

bool JsonObject::has(const char* key) const {
  return value_.contains(key);
}

std::string JsonObject::text(const char* key) const {
  const json& member = memberAt(key);
  if (member.is_null()) return "";
  if (!member.is_string()) throw wrong(key, "is not a text");
  return member.get<std::string>();
}

std::int64_t JsonObject::number(const char* key, std::int64_t least, std::int64_t most) const {
  const json& member = memberAt(key);
  if (member.is_null()) return 0;
  constexpr auto kMost = std::uint64_t{std::numeric_limits<std::int64_t>::max()};
  const bool isHuge = member.is_number_unsigned() && member.get<std::uint64_t>() > kMost;
  if (!member.is_number_integer() || isHuge || member.get<std::int64_t>() < least ||
      member.get<std::int64_t>() > most) {
    throw wrong(key, fmt::format("is not a whole number from {} to {}", least, most));
  }
  return member.get<std::int64_t>();
}

std::int64_t JsonObject::count(const char* key) const {
  return number(key, 0, std::numeric_limits<std::int64_t>::max());
}

bool JsonObject::flag(const char* key) const {
  const json& member = memberAt(key);
  if (!member.is_null() && !member.is_boolean()) throw wrong(key, "is neither true nor false");
  return !member.is_null() && member.get<bool>();
}

DateValue JsonObject::date(const char* key) const {
  const std::string written = text(key);
  DateValue read = dateOf(written);
  if (!written.empty() && !read) throw wrong(key, "\"" + written + "\" is not a date YYYY-MM-DDTHH:MM:SS");
  return read;
}

std::optional<SMPTETime> JsonObject::timecode(const char* key) const {
  const std::string written = text(key);
  auto read = timecodeOf(written);
  if (!written.empty() && !read) throw wrong(key, "\"" + written + "\" is not a timecode HH:MM:SS:FF");
  return read;
}

const json& JsonObject::list(const char* key) const {
  const json& member = memberAt(key);
  if (!member.is_array()) throw wrong(key, "is not a list");
  return member;
}

WrongJson JsonObject::wrong(const char* key, const std::string& what) const {
  return {where_ + ": " + key + " " + what};
}

const json& JsonObject::memberAt(const char* key) const {
  static const json kNone;
  const auto at = value_.find(key);
  return at == value_.end() ? kNone : *at;
}

}  // namespace zq::host
