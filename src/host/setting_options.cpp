#include "host/setting_options.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <cstdlib>
#include <optional>

#include "capture/settings_keys.h"
#include "host/picture_size.h"

namespace zq::host {
namespace {

enum class Kind { boolean, integer, real };

struct KeyRule {
  const char* key;
  Kind kind;
  int low;
  int high;
  const char* meaning;
};

constexpr std::array<KeyRule, 11> kRules{{
    {ZQACDetectScene, Kind::boolean, 0, 1, "cut scenes where the recording date jumps"},
    {ZQACNbDropFrame, Kind::integer, 0, 100000, "frames to skip after a cut"},
    {ZQACDetectEndTape, Kind::boolean, 0, 1, "stop when no frames arrive any more"},
    {ZQACDetectEndTapeSecond, Kind::integer, 1, 86400, "... for this many seconds"},
    {ZQACActionAfterRecord, Kind::integer, 0, 2, "the tape afterwards: 0 plays on, 1 stops, 2 pauses"},
    {ZQACFrameSampling, Kind::boolean, 0, 1, "a thumbnail at each sampling interval, not only first and last"},
    {ZQACSampleInterval, Kind::integer, 0, 4, "the interval: 0 to 4 for 1, 2, 5, 10, 20 seconds"},
    {ZQACCaptureMovie, Kind::boolean, 0, 1, "write movies, not only thumbnails"},
    {ZQACCaptureCompression, Kind::integer, 0, 1000, "0: as received, from 1 on as deckhand presets numbers them"},
    {ZQACCaptureCompressionSize, Kind::integer, 0, kTagOfTape, "picture size of custom compression, see --size"},
    {ZQACCaptureMovieVolume, Kind::real, 0, 1, "volume of the sound monitor, 0 to 1"},
}};

std::string rangeOf(const KeyRule& rule) {
  switch (rule.kind) {
    case Kind::boolean:
      return "true or false";
    case Kind::integer:
      return rule.low == rule.high ? fmt::format("{}", rule.low)
                                   : fmt::format("a whole number from {} to {}", rule.low, rule.high);
    case Kind::real:
      return fmt::format("a number from {} to {}", rule.low, rule.high);
  }
  return "";
}

std::optional<platform::SettingValue> parseBoolean(std::string text) {
  for (char& letter : text) letter = static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
  for (const char* yes : {"true", "yes", "on", "1"}) {
    if (text == yes) return platform::SettingValue(true);
  }
  for (const char* no : {"false", "no", "off", "0"}) {
    if (text == no) return platform::SettingValue(false);
  }
  return std::nullopt;
}

std::optional<platform::SettingValue> parseInteger(const std::string& text, const KeyRule& rule) {
  int number = 0;
  const auto [end, failed] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (failed != std::errc() || end != text.data() + text.size()) return std::nullopt;
  if (number < rule.low || number > rule.high) return std::nullopt;
  return platform::SettingValue(std::int64_t{number});
}

std::optional<platform::SettingValue> parseReal(const std::string& text, const KeyRule& rule) {
  char* end = nullptr;
  const double number = std::strtod(text.c_str(), &end);
  if (text.empty() || *end != '\0' || !(number >= rule.low && number <= rule.high)) return std::nullopt;
  return platform::SettingValue(number);
}

std::optional<platform::SettingValue> parseValue(const std::string& text, const KeyRule& rule) {
  switch (rule.kind) {
    case Kind::boolean:
      return parseBoolean(text);
    case Kind::integer:
      return parseInteger(text, rule);
    case Kind::real:
      return parseReal(text, rule);
  }
  return std::nullopt;
}

std::string storedText(const platform::SettingValue& value) {
  if (const bool* flag = std::get_if<bool>(&value)) return *flag ? "true" : "false";
  if (const std::int64_t* number = std::get_if<std::int64_t>(&value)) return fmt::format("{}", *number);
  if (const double* real = std::get_if<double>(&value)) return fmt::format("{}", *real);
  if (const std::string* text = std::get_if<std::string>(&value)) return *text;
  return "";
}

}  // namespace

Expected<SettingChange> parseSetting(const std::string& text) {
  const std::size_t equals = text.find('=');
  if (equals == std::string::npos) {
    return Error{"--set " + text + " has no value", "Write it as --set KEY=VALUE."};
  }
  const std::string key = text.substr(0, equals);
  const std::string value = text.substr(equals + 1);
  const auto* rule =
      std::find_if(kRules.begin(), kRules.end(), [&key](const KeyRule& held) { return key == held.key; });
  if (rule == kRules.end()) {
    return Error{"--set: there is no setting \"" + key + "\"",
                 fmt::format("Known are {}.", fmt::join(settingKeys(), ", "))};
  }
  const auto parsed = parseValue(value, *rule);
  if (!parsed)
    return Error{"--set " + key + ": \"" + value + "\" is not a value of it", "It takes " + rangeOf(*rule) + "."};
  return SettingChange{key, *parsed};
}

Expected<std::vector<SettingChange>> parseSettings(const std::vector<std::string>& texts) {
  std::vector<SettingChange> changes;
  for (const std::string& text : texts) {
    auto change = parseSetting(text);
    if (!change.ok()) return change.error();
    changes.push_back(change.value());
  }
  return changes;
}

Expected<platform::SettingValue> readStored(const std::string& key, const platform::SettingValue& value) {
  const auto* rule =
      std::find_if(kRules.begin(), kRules.end(), [&key](const KeyRule& held) { return key == held.key; });
  if (rule == kRules.end()) return value;
  // A configuration leaves a yes or no under the picture size, which counts as 1 or 0.
  const bool* flag = rule->kind == Kind::integer ? std::get_if<bool>(&value) : nullptr;
  const std::string text = flag != nullptr ? (*flag ? "1" : "0") : storedText(value);
  if (auto parsed = parseValue(text, *rule)) return *parsed;
  return Error{"The stored setting " + key + ": \"" + text + "\" is not a value of it",
               "It takes " + rangeOf(*rule) + "."};
}

std::string settingsHelp() {
  std::string help;
  for (const KeyRule& rule : kRules) help += fmt::format("  {:<24} {} ({})\n", rule.key, rule.meaning, rangeOf(rule));
  return help;
}

std::vector<std::string> settingKeys() {
  std::vector<std::string> keys;
  keys.reserve(kRules.size());
  for (const KeyRule& rule : kRules) keys.emplace_back(rule.key);
  return keys;
}

}  // namespace zq::host
