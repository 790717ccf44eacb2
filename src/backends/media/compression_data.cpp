#include "backends/media/compression_data.h"

#include <fmt/format.h>

#include <nlohmann/json.hpp>
#include <string>

#include "backends/media/compression_text.h"

namespace zq::media {
namespace {

// JSON text:
//
//   {"format": "deckhand-compression",   what it is
//    "version": 1,                       a later one is refused; a new key or codec makes one
//    "settings": {"codec": "h264", "quality": "20", ...}}     the texts' keys and values
constexpr char kFormat[] = "deckhand-compression";
constexpr int kVersion = 1;
// Some hundred bytes are usual.
constexpr std::size_t kLargest = 1 << 16;

Error unreadable(const std::string& why) {
  return Error{"The stored compression settings cannot be read",
               fmt::format("{} Choose the settings anew; until then the standard ones are used.", why)};
}

}  // namespace

std::vector<std::uint8_t> compressionData(const CompressionSettings& settings) {
  nlohmann::ordered_json pairs = nlohmann::ordered_json::object();
  for (const std::string& text : textsOf(settings)) {
    const std::size_t equals = text.find('=');
    pairs[text.substr(0, equals)] = text.substr(equals + 1);
  }
  const nlohmann::ordered_json whole{{"format", kFormat}, {"version", kVersion}, {"settings", pairs}};
  const std::string bytes = whole.dump();
  return {bytes.begin(), bytes.end()};
}

Expected<CompressionSettings> readCompressionData(std::span<const std::uint8_t> data) {
  if (data.size() > kLargest) return unreadable("They are larger than settings ever are.");
  const auto whole = nlohmann::json::parse(data.begin(), data.end(), nullptr, false);
  if (!whole.is_object() || whole.value("format", nlohmann::json()) != kFormat) {
    return unreadable("They are damaged, or those of another program.");
  }
  const nlohmann::json version = whole.value("version", nlohmann::json());
  if (!version.is_number_integer() || version < 1) return unreadable("They are damaged: they name no version.");
  if (version > kVersion) {
    return unreadable(
        fmt::format("A later version of this program stored them (format {}; this one reads {}). Update "
                    "it to use them.",
                    version.dump(), kVersion));
  }
  const nlohmann::json pairs = whole.value("settings", nlohmann::json());
  if (!pairs.is_object()) return unreadable("They are damaged: there is nothing in them.");
  std::vector<std::string> texts;
  for (const auto& [key, value] : pairs.items()) {
    if (!value.is_string()) return unreadable(fmt::format("They are damaged: \"{}\" has no value.", key));
    texts.push_back(key + "=" + value.get<std::string>());
  }
  auto settings = settingsFromTexts(texts);
  if (!settings.ok()) return unreadable(settings.error().text());
  return settings;
}

}  // namespace zq::media
