#include "host/configuration_json.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <nlohmann/json.hpp>
#include <utility>

#include "capture/settings_keys.h"
#include "host/base64.h"
#include "host/session_import_json.h"

namespace zq::host {
namespace {

using nlohmann::json;
using nlohmann::ordered_json;
using platform::SettingValue;

constexpr char kVersionKey[] = "deckhandConfigurations";
constexpr char kListKey[] = "configurations";
constexpr char kPresetKey[] = "preset";
constexpr std::int64_t kVersion = 1;

enum class Kind { text, boolean, integer, interval, data };

struct KeyRule {
  const char* key = "";
  Kind kind = Kind::text;
  std::int64_t low = 0;
  std::int64_t high = 0;
};

// In the order in which they are written.
constexpr std::array<KeyRule, 13> kRules{{
    {ZQACConfName, Kind::text},
    {ZQACConfDetectScene, Kind::boolean},
    {ZQACConfNbDropFrame, Kind::integer, 0, 100000},
    {ZQACConfDetectEndTape, Kind::boolean},
    {ZQACConfDetectEndTapeSecond, Kind::integer, 1, 86400},
    {ZQACConfActionAfterRecord, Kind::integer, 0, 2},
    {ZQACConfFrameSampling, Kind::boolean},
    {ZQACConfSampleInterval, Kind::interval},
    {ZQACConfCaptureMovie, Kind::boolean},
    {ZQACConfCompression, Kind::integer, 0, 1000},
    {ZQACConfCompressionSize, Kind::integer, 0, 5},
    {ZQACConfCompressionData, Kind::data},
    {ZQACCaptureOldCompression, Kind::integer, 0, 1000000},
}};

const KeyRule* ruleFor(const std::string& key) {
  const auto* found = std::ranges::find_if(kRules, [&](const KeyRule& rule) { return key == rule.key; });
  return found == kRules.end() ? nullptr : found;
}

ordered_json jsonOfValue(const SettingValue& value) {
  if (const bool* flag = std::get_if<bool>(&value)) return *flag;
  if (const std::int64_t* number = std::get_if<std::int64_t>(&value)) return *number;
  if (const double* real = std::get_if<double>(&value)) return *real;
  if (const std::string* text = std::get_if<std::string>(&value)) return *text;
  return base64Of(std::get<std::vector<std::uint8_t>>(value));
}

SettingValue readInterval(const JsonObject& object, const char* key) {
  const std::int64_t seconds = object.number(key, 1, 20);
  if (std::ranges::find(sampleIntervalValue, seconds) == sampleIntervalValue.end()) {
    throw object.wrong(key, fmt::format("is none of {} seconds", fmt::join(sampleIntervalValue, ", ")));
  }
  return seconds;
}

SettingValue readData(const JsonObject& object, const char* key) {
  const auto bytes = bytesOfBase64(object.text(key));
  if (!bytes) throw object.wrong(key, "is not base64");
  return *bytes;
}

SettingValue readValue(const JsonObject& object, const KeyRule& rule) {
  switch (rule.kind) {
    case Kind::text:
      return object.text(rule.key);
    case Kind::boolean:
      return object.flag(rule.key);
    case Kind::integer:
      return object.number(rule.key, rule.low, rule.high);
    case Kind::interval:
      return readInterval(object, rule.key);
    case Kind::data:
      break;
  }
  return readData(object, rule.key);
}

StoredConfiguration readConfiguration(const json& item, const std::string& where) {
  const JsonObject object(item, where);
  StoredConfiguration configuration;
  for (const auto& [key, value] : item.items()) {
    if (value.is_null()) throw object.wrong(key.c_str(), "is null");
    if (key == kPresetKey) {
      configuration.preset = object.text(kPresetKey);
      // It is printed, as the name is.
      if (!checkConfigurationName(configuration.preset).ok()) throw object.wrong(kPresetKey, "is no preset's name");
      continue;
    }
    const KeyRule* rule = ruleFor(key);
    if (rule == nullptr) throw object.wrong(key.c_str(), "is no option that a configuration has");
    configuration.values[key] = readValue(object, *rule);
  }
  if (Status named = checkConfigurationName(configuration.name()); !named.ok()) {
    throw WrongJson{where + ": " + named.error().message};
  }
  return configuration;
}

std::vector<StoredConfiguration> readList(const JsonObject& file) {
  std::vector<StoredConfiguration> all;
  for (const json& item : file.list(kListKey)) {
    StoredConfiguration read = readConfiguration(item, fmt::format("configuration {}", all.size() + 1));
    if (findConfiguration(all, read.name()) != nullptr) throw WrongJson{"two are called \"" + read.name() + "\""};
    all.push_back(std::move(read));
  }
  return all;
}

Error damaged(const std::string& what, const std::string& why) {
  return {what + " cannot be read", why + ". Nothing of it was taken, and nothing changed."};
}

}  // namespace

ordered_json configurationJson(const StoredConfiguration& configuration) {
  ordered_json object = ordered_json::object();
  for (const KeyRule& rule : kRules) {
    const auto found = configuration.values.find(rule.key);
    if (found != configuration.values.end()) object[rule.key] = jsonOfValue(found->second);
  }
  if (!configuration.preset.empty()) object[kPresetKey] = configuration.preset;
  return object;
}

ordered_json configurationsJson(const std::vector<StoredConfiguration>& configurations) {
  ordered_json list = ordered_json::array();
  for (const StoredConfiguration& configuration : configurations) list.push_back(configurationJson(configuration));
  return {{kVersionKey, kVersion}, {kListKey, list}};
}

Expected<std::vector<StoredConfiguration>> readConfigurations(const std::string& text, const std::string& what) {
  const json parsed = json::parse(text, nullptr, false);
  if (parsed.is_discarded()) return damaged(what, "It is not JSON, or damaged");
  try {
    const JsonObject file(parsed, "the file");
    if (!file.has(kVersionKey)) throw WrongJson{"It has no \"" + std::string(kVersionKey) + "\""};
    if (file.count(kVersionKey) > kVersion) {
      return damaged(what, "It is of a newer Deckhand than this one");
    }
    if (file.count(kVersionKey) < 1) throw file.wrong(kVersionKey, "is no version");
    return readList(file);
  } catch (const WrongJson& wrong) {
    return damaged(what, wrong.reason);
  }
}

}  // namespace zq::host
