#pragma once
// An object of a JSON file that others may have written: its members are what they should be, or what is wrong is told.

#include <cstdint>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>

#include "base/calendar_date.h"
#include "timecode/smpte_time.h"

namespace zq::host {

/// What is wrong, and where; thrown by the object, and caught by who reads the file.
struct WrongJson {
  std::string reason;
};

/// A member that is null or not there is "", 0, false or nothing.
class JsonObject {
 public:
  /// `where` names it in messages. `value` must outlive it.
  JsonObject(const nlohmann::json& value, std::string where);

  bool has(const char* key) const;
  std::string text(const char* key) const;
  std::int64_t number(const char* key, std::int64_t least, std::int64_t most) const;
  std::int64_t count(const char* key) const;
  bool flag(const char* key) const;
  DateValue date(const char* key) const;
  std::optional<SMPTETime> timecode(const char* key) const;
  /// One that must be there.
  const nlohmann::json& list(const char* key) const;

  WrongJson wrong(const char* key, const std::string& what) const;

 private:
  const nlohmann::json& memberAt(const char* key) const;

  const nlohmann::json& value_;
  const std::string where_;
};

}  // namespace zq::host
