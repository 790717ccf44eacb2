#include "host/run_settings.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "capture/configuration.h"
#include "capture/settings_keys.h"
#include "host/configuration_store.h"
#include "host/exit_codes.h"
#include "host/picture_size.h"

namespace zq::host {
namespace {

using Data = std::vector<std::uint8_t>;

// What movies as received go into.
const std::vector<std::string>& containersAsReceived() {
  static const std::vector<std::string> containers{"mov", "avi", "mkv", "dv"};
  return containers;
}

Refusal misspoken(Error error) {
  return {std::move(error), kExitUsage};
}

Refusal failed(Error error) {
  return {std::move(error), kExitFailed};
}

Error noSuchCompression(const std::string& what, const CompressionMenu& menu) {
  return {what, "This machine has: " + menu.identifiers() + ". deckhand presets tells what each is."};
}

/// What is the same on every machine.
const CompressionMenu& noPresets() {
  static const CompressionMenu menu({});
  return menu;
}

/// Of a choice that is not custom.
std::optional<Refusal> checkSize(const CompressionWords& words) {
  if (words.size.empty()) return std::nullopt;
  return misspoken({"--size " + words.size + " is of no use here", "It goes with custom compression only."});
}

}  // namespace

Status checkWords(const CompressionWords& words) {
  const bool isCustom = noPresets().indexOf(words.compression) == noPresets().custom();
  if (!words.custom.empty() && !isCustom) {
    return Error{"--custom " + words.custom.front() + " is of no use here", "It goes with --compression custom only."};
  }
  if (!words.size.empty() && !pictureSizeTag(words.size)) {
    return Error{"--size: \"" + words.size + "\" is no picture size of custom compression",
                 "There are " + pictureSizes() + "."};
  }
  return {};
}

std::optional<int> RunSettings::indexOf(const std::string& word) {
  if (noPresets().indexOf(word) == CompressionMenu::kNone) return CompressionMenu::kNone;
  return menu().indexOf(word);
}

RunSettings::RunSettings(platform::Runtime& runtime, platform::Settings& stored, BackendModule& module)
    : stored_(stored), module_(module), live_(runtime, stored) {}

const CompressionMenu& RunSettings::menu() {
  if (!menu_) menu_.emplace(module_.compressionPresets());
  return *menu_;
}

std::optional<Refusal> RunSettings::lay(Start start, const CompressionWords& words,
                                        const std::vector<SettingChange>& changes) {
  layStored(start);
  if (!words.configuration.empty()) {
    if (auto refusal = layConfiguration(words.configuration)) return refusal;
  }
  if (auto refusal = layChanges(changes)) return refusal;
  if (auto refusal = layWords(words)) return refusal;
  if (auto refusal = checkAll()) return refusal;
  return readChoice(words);
}

// A run keeps what it began with, so every key becomes its own: one that is not stored as well.
void RunSettings::layStored(Start start) {
  std::vector<std::string> keys = settingKeys();
  keys.emplace_back(ZQACCaptureCompressionData);
  for (const std::string& key : keys) {
    const auto value = stored_.objectForKey(key);
    live_.overlayObjectForKey(key, value.value_or(false));
    if (!value) live_.removeObjectForKey(key);
  }
  if (start == Start::uncompressed) live_.setIntegerForKey(ZQACCaptureCompression, CompressionMenu::kNone);
}

std::optional<Refusal> RunSettings::layConfiguration(const std::string& name) {
  const auto found = ConfigurationStore(stored_, module_).named(name);
  if (!found.ok()) return failed(found.error());
  const Configuration& values = found.value().values;
  const auto choice = choiceIn(found.value());
  if (!choice.ok()) return failed(choice.error());
  applyCaptureOptions(values, live_);
  live_.setIntegerForKey(ZQACCaptureCompression, choice.value());
  applyCompressionSettings(values, live_);
  const auto oldFormat = integerIn(values, ZQACCaptureOldCompression);
  if (!oldFormat) return std::nullopt;
  if (isCustomOfOldScheme(*oldFormat)) live_.removeObjectForKey(ZQACCaptureCompressionData);
  live_.setIntegerForKey(ZQACCaptureCompression,
                         isCustomOfOldScheme(*oldFormat) ? menu().custom() : CompressionMenu::kNone);
  return std::nullopt;
}

/// The number of what the configuration was saved with, among what this machine has.
Expected<int> RunSettings::choiceIn(const StoredConfiguration& configuration) {
  const int asStored =
      integerIn(configuration.values, ZQACConfCompression).value_or(live_.integerForKey(ZQACCaptureCompression));
  if (configuration.preset.empty()) return asStored;
  if (const auto index = indexOf(configuration.preset)) return *index;
  return noSuchCompression(fmt::format("The configuration \"{}\" compresses with \"{}\", which this machine cannot",
                                       configuration.name(), configuration.preset),
                           menu());
}

std::optional<Refusal> RunSettings::layChanges(const std::vector<SettingChange>& changes) {
  for (const SettingChange& change : changes) {
    live_.setObjectForKey(change.key, change.value);
    const int index = change.key == ZQACCaptureCompression ? live_.integerForKey(change.key) : CompressionMenu::kNone;
    if (index == CompressionMenu::kNone || menu().holds(index)) continue;
    return misspoken({fmt::format("--set {}: {} is the number of no compression here", change.key, index),
                      fmt::format("It takes 0 to {}, as deckhand presets numbers them.", menu().custom())});
  }
  return std::nullopt;
}

std::optional<Refusal> RunSettings::layWords(const CompressionWords& words) {
  if (!words.compression.empty()) {
    const auto index = indexOf(words.compression);
    if (!index) return misspoken(noSuchCompression("There is no compression \"" + words.compression + "\"", menu()));
    live_.setIntegerForKey(ZQACCaptureCompression, *index);
  }
  if (const auto tag = pictureSizeTag(words.size)) live_.setIntegerForKey(ZQACCaptureCompressionSize, *tag);
  return words.custom.empty() ? std::nullopt : layCustom(words.custom);
}

std::optional<Refusal> RunSettings::layCustom(const std::vector<std::string>& settings) {
  auto data = module_.makeCustomCompression(settings);
  if (!data.ok()) return misspoken(data.error());
  live_.setObjectForKey(ZQACCaptureCompressionData, std::move(data.value()));
  return std::nullopt;
}

/// Whether each value is one of its key's; what others wrote in another way is read into the key's own kind.
std::optional<Refusal> RunSettings::checkAll() {
  for (const std::string& key : settingKeys()) {
    const auto value = live_.objectForKey(key);
    if (!value) continue;
    auto read = readStored(key, *value);
    if (!read.ok()) return failed(read.error());
    if (read.value() != *value) live_.setObjectForKey(key, std::move(read.value()));
  }
  return std::nullopt;
}

std::optional<Refusal> RunSettings::readChoice(const CompressionWords& words) {
  const int index = live_.integerForKey(ZQACCaptureCompression);
  compression_.index = index;
  compression_.sizeTag = live_.integerForKey(ZQACCaptureCompressionSize);
  compression_.containers = containersAsReceived();
  if (index == CompressionMenu::kNone) {
    compression_.name = noPresets().nameAt(index);
    compression_.identifier = noPresets().identifierAt(index);
    return checkSize(words);
  }
  if (!menu().holds(index)) {
    return failed(noSuchCompression(
        fmt::format("The setting captureMovieCompression is {}, and this machine has no such compression", index),
        menu()));
  }
  compression_.name = menu().nameAt(index);
  compression_.identifier = menu().identifierAt(index);
  const CompressionPreset* preset = menu().presetAt(index);
  if (preset == nullptr) return readCustom();
  compression_.containers = preset->containers;
  compression_.picturesPerFrame = preset->picturesPerFrame;
  return checkSize(words);
}

// Data that is damaged or of a newer version stays as it is stored: nothing but the user knows what it meant.
std::optional<Refusal> RunSettings::readCustom() {
  if (!live_.objectForKey(ZQACCaptureCompressionData)) {
    if (auto refusal = layCustom({})) return refusal;
  }
  const auto stored = live_.objectForKey(ZQACCaptureCompressionData);
  const Data* data = std::get_if<Data>(&*stored);
  const auto custom = module_.readCustomCompression(data != nullptr ? *data : Data());
  if (!custom.ok()) {
    return failed({"The stored settings of custom compression cannot be used, and stay as they are",
                   custom.error().text() + " For this run, choose with --compression custom --custom KEY=VALUE."});
  }
  compression_.containers = custom.value().containers;
  compression_.customSettings = custom.value().settings;
  compression_.picturesPerFrame = custom.value().picturesPerFrame;
  // A scaled picture cannot keep both fields.
  const bool isScaled = pictureSizeName(compression_.sizeTag) != pictureSizeName(kTagOfTape);
  if (isScaled && compression_.picturesPerFrame == 1) compression_.picturesPerFrame = 2;
  return std::nullopt;
}

Expected<std::string> RunSettings::extensionFor(const std::string& wanted) const {
  const std::vector<std::string>& fitting = compression_.containers;
  if (wanted.empty() && !fitting.empty()) return fitting.front();
  if (std::ranges::find(fitting, wanted) != fitting.end()) return wanted;
  const std::string what = compression_.isCompressed() ? "movies compressed with " + compression_.name
                                                       : std::string("movies as received, without compression");
  return Error{"--format " + wanted + " cannot hold " + what, fmt::format("Fitting: {}.", fmt::join(fitting, ", "))};
}

}  // namespace zq::host
