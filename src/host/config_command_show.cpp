#include "host/config_command_show.h"

#include <fmt/format.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <string>

#include "capture/settings_keys.h"
#include "host/configuration_json.h"
#include "host/picture_size.h"

namespace zq::host {
namespace {

using nlohmann::ordered_json;

/// What the older scheme's key says, which wins over the others.
std::optional<int> oldChoice(const StoredConfiguration& configuration, const CompressionMenu& menu) {
  const auto captureFormat = integerIn(configuration.values, ZQACCaptureOldCompression);
  if (!captureFormat) return std::nullopt;
  return isCustomOfOldScheme(*captureFormat) ? menu.custom() : CompressionMenu::kNone;
}

bool showsCustom(const StoredConfiguration& configuration, const CompressionMenu& menu) {
  return !oldChoice(configuration, menu) && menu.indexOf(configuration.preset) == menu.custom();
}

/// What the configuration compresses with: by the older scheme, the preset that it was saved with, or its number.
std::string compressionOf(const StoredConfiguration& configuration, const CompressionMenu& menu) {
  if (const auto old = oldChoice(configuration, menu)) return menu.nameAt(*old);
  if (configuration.preset.empty()) {
    const int index = integerIn(configuration.values, ZQACConfCompression).value_or(CompressionMenu::kNone);
    return menu.holds(index) ? menu.nameAt(index) : fmt::format("number {}, not on this machine", index);
  }
  const auto index = menu.indexOf(configuration.preset);
  return index ? menu.nameAt(*index) : configuration.preset + ", not on this machine";
}

void printRow(const std::string& key, const std::string& value) {
  fmt::print("{:<24} {}\n", key, value);
}

// A size comes back from a configuration as a yes or no, see docs/compression.md.
std::string sizeText(int tag) {
  return fmt::format("{} ({}; {} when the configuration is used)", tag, pictureSizeName(tag),
                     pictureSizeName(tag != 0 ? 1 : 0));
}

void printCustom(const StoredConfiguration& configuration, BackendModule& module) {
  const auto found = configuration.values.find(ZQACConfCompressionData);
  if (found == configuration.values.end()) return;
  const auto* data = std::get_if<std::vector<std::uint8_t>>(&found->second);
  const auto custom = module.readCustomCompression(data != nullptr ? *data : std::vector<std::uint8_t>());
  if (!custom.ok()) return printRow("custom", "cannot be read: " + custom.error().text());
  for (const std::string& setting : custom.value().settings) printRow("custom", setting);
}

}  // namespace

void printList(const std::vector<StoredConfiguration>& configurations, const CompressionMenu& menu) {
  std::size_t width = std::string("name").size();
  for (const StoredConfiguration& held : configurations) width = std::max(width, held.name().size());
  fmt::print("{:<{}}  {}\n", "name", width, "compression");
  for (const StoredConfiguration& held : configurations) {
    fmt::print("{:<{}}  {}\n", held.name(), width, compressionOf(held, menu));
  }
}

void printListJson(const std::vector<StoredConfiguration>& configurations, const CompressionMenu& menu) {
  ordered_json list = ordered_json::array();
  for (const StoredConfiguration& held : configurations) {
    list.push_back({{"name", held.name()}, {"compression", compressionOf(held, menu)}});
  }
  fmt::print("{}\n", ordered_json({{"configurations", list}}).dump(2));
}

void printConfiguration(const StoredConfiguration& configuration, BackendModule& module) {
  const CompressionMenu menu(module.compressionPresets());
  const ordered_json values = configurationJson({configuration.values, ""});
  for (const auto& [key, value] : values.items()) {
    if (key == ZQACConfCompressionData) continue;
    if (key == ZQACConfCompressionSize) {
      printRow(key, sizeText(integerIn(configuration.values, key).value_or(0)));
    } else {
      printRow(key, value.is_string() ? value.get<std::string>() : value.dump());
    }
  }
  printRow("compression", compressionOf(configuration, menu));
  if (showsCustom(configuration, menu)) printCustom(configuration, module);
}

}  // namespace zq::host
