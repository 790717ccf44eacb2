#pragma once
// The choices of compression, numbered as the controllers' pop-up has them: none, this machine's presets, custom.

#include <optional>
#include <string>
#include <vector>

#include "host/backend_module.h"

namespace zq::host {

class CompressionMenu {
 public:
  explicit CompressionMenu(std::vector<CompressionPreset> presets) : presets_(std::move(presets)) {}

  static constexpr int kNone = 0;
  int custom() const { return static_cast<int>(presets_.size()) + 1; }
  bool holds(int index) const { return index >= kNone && index <= custom(); }

  /// Of a preset's name or identifier, "none" or "custom", in capitals or not.
  std::optional<int> indexOf(const std::string& word) const;
  /// Null for all that is no preset.
  const CompressionPreset* presetAt(int index) const;
  /// "None", a preset's name, "Custom"; "" where there is none.
  std::string nameAt(int index) const;
  /// What a preset is known by on every machine: "none", its identifier, "custom"; "" where there is none.
  std::string identifierAt(int index) const;
  /// All of them, for a message.
  std::string identifiers() const;
  const std::vector<CompressionPreset>& presets() const { return presets_; }

 private:
  const std::vector<CompressionPreset> presets_;
};

}  // namespace zq::host
