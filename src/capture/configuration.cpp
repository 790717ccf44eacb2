#include "capture/configuration.h"

#include <array>

#include "capture/capture_settings.h"
#include "capture/settings_keys.h"

namespace zq {

using platform::SettingValue;

namespace {

/// What is stored under one key live, and under another in a configuration.
struct KeyPair {
  const char* live;
  const char* configured;
};

constexpr std::array<KeyPair, 9> kCopiedKeys{{{ZQACDetectScene, ZQACConfDetectScene},
                                              {ZQACNbDropFrame, ZQACConfNbDropFrame},
                                              {ZQACDetectEndTape, ZQACConfDetectEndTape},
                                              {ZQACDetectEndTapeSecond, ZQACConfDetectEndTapeSecond},
                                              {ZQACActionAfterRecord, ZQACConfActionAfterRecord},
                                              {ZQACFrameSampling, ZQACConfFrameSampling},
                                              {ZQACCaptureMovie, ZQACConfCaptureMovie},
                                              {ZQACCaptureCompression, ZQACConfCompression},
                                              {ZQACCaptureCompressionSize, ZQACConfCompressionSize}}};

const SettingValue* find(const Configuration& configuration, const std::string& key) {
  const auto found = configuration.find(key);
  return found == configuration.end() ? nullptr : &found->second;
}

void copyBool(const Configuration& from, const char* configured, platform::Settings& live, const char* key) {
  if (const SettingValue* value = find(from, configured)) live.setBoolForKey(key, platform::boolFrom(*value));
}

void copyInteger(const Configuration& from, const char* configured, platform::Settings& live, const char* key) {
  if (const auto number = integerIn(from, configured)) live.setIntegerForKey(key, *number);
}

/// The boolean setter takes one byte, so a number counts by its lowest.
void copyIntegerAsBool(const Configuration& from, const char* configured, platform::Settings& live, const char* key) {
  if (const auto number = integerIn(from, configured)) live.setBoolForKey(key, (*number & 0xFF) != 0);
}

/// Live, the interval is an index into the table; seconds that are not in it change nothing.
void copySampleInterval(const Configuration& from, platform::Settings& live) {
  const auto seconds = integerIn(from, ZQACConfSampleInterval);
  for (std::size_t index = 0; index < sampleIntervalValue.size(); ++index) {
    if (seconds == sampleIntervalValue[index]) live.setIntegerForKey(ZQACSampleInterval, static_cast<int>(index));
  }
}

}  // namespace

void applyCaptureOptions(const Configuration& configuration, platform::Settings& live) {
  copyBool(configuration, ZQACConfDetectScene, live, ZQACDetectScene);
  copyInteger(configuration, ZQACConfNbDropFrame, live, ZQACNbDropFrame);
  copyBool(configuration, ZQACConfDetectEndTape, live, ZQACDetectEndTape);
  copyInteger(configuration, ZQACConfDetectEndTapeSecond, live, ZQACDetectEndTapeSecond);
  copyInteger(configuration, ZQACConfActionAfterRecord, live, ZQACActionAfterRecord);
  copyBool(configuration, ZQACConfFrameSampling, live, ZQACFrameSampling);
  copySampleInterval(configuration, live);
  copyIntegerAsBool(configuration, ZQACConfCaptureMovie, live, ZQACCaptureMovie);
}

// The size goes through the boolean setter too: a tag of any size comes back as 1. Configurations that people have rely
// on what they get from it.
void applyCompressionSettings(const Configuration& configuration, platform::Settings& live) {
  copyIntegerAsBool(configuration, ZQACConfCompressionSize, live, ZQACCaptureCompressionSize);
  if (const SettingValue* data = find(configuration, ZQACConfCompressionData)) {
    live.setObjectForKey(ZQACCaptureCompressionData, *data);
  }
}

Configuration configurationOf(const platform::Settings& live) {
  Configuration configuration;
  for (const KeyPair& keys : kCopiedKeys) {
    if (auto value = live.objectForKey(keys.live)) configuration[keys.configured] = *value;
  }
  configuration[ZQACConfSampleInterval] = std::int64_t{frameSampleIntervalOf(live)};
  if (auto data = live.objectForKey(ZQACCaptureCompressionData)) configuration[ZQACConfCompressionData] = *data;
  return configuration;
}

std::optional<int> integerIn(const Configuration& configuration, const std::string& key) {
  const SettingValue* value = find(configuration, key);
  return value != nullptr ? std::optional(platform::integerFrom(*value)) : std::nullopt;
}

std::string configurationName(const Configuration& configuration) {
  const SettingValue* value = find(configuration, ZQACConfName);
  const std::string* name = value != nullptr ? std::get_if<std::string>(value) : nullptr;
  return name != nullptr ? *name : "";
}

}  // namespace zq
