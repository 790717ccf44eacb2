#include "host/compression_menu.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>

namespace zq::host {
namespace {

constexpr char kNoneWord[] = "none";
constexpr char kCustomWord[] = "custom";

bool sameWord(const std::string& one, const std::string& other) {
  return std::ranges::equal(one, other,
                            [](unsigned char a, unsigned char b) { return std::tolower(a) == std::tolower(b); });
}

}  // namespace

std::optional<int> CompressionMenu::indexOf(const std::string& word) const {
  if (sameWord(word, kNoneWord)) return kNone;
  if (sameWord(word, kCustomWord)) return custom();
  const auto found = std::ranges::find_if(presets_, [&](const CompressionPreset& preset) {
    return sameWord(word, preset.name) || sameWord(word, preset.identifier);
  });
  if (found == presets_.end()) return std::nullopt;
  return static_cast<int>(found - presets_.begin()) + 1;
}

const CompressionPreset* CompressionMenu::presetAt(int index) const {
  return index > kNone && index < custom() ? &presets_[static_cast<std::size_t>(index) - 1] : nullptr;
}

std::string CompressionMenu::nameAt(int index) const {
  if (index == kNone) return "None";
  if (index == custom()) return "Custom";
  const CompressionPreset* preset = presetAt(index);
  return preset != nullptr ? preset->name : "";
}

std::string CompressionMenu::identifierAt(int index) const {
  if (index == kNone) return kNoneWord;
  if (index == custom()) return kCustomWord;
  const CompressionPreset* preset = presetAt(index);
  return preset != nullptr ? preset->identifier : "";
}

std::string CompressionMenu::identifiers() const {
  std::vector<std::string> identifiers;
  for (int index = kNone; holds(index); ++index) identifiers.push_back(identifierAt(index));
  return fmt::format("{}", fmt::join(identifiers, ", "));
}

}  // namespace zq::host
