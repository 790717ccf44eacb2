#pragma once
// The settings that one run goes by, and what they make of its movies: those that are stored, then a named
// configuration, then what the command line says. Nothing that is stored changes.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "backends/settings/layered_settings.h"
#include "base/status.h"
#include "host/backend_module.h"
#include "host/compression_menu.h"
#include "host/setting_options.h"
#include "host/stored_configuration.h"
#include "platform/runtime.h"

namespace zq::host {

/// What the command line says of compression; "" where it says nothing.
struct CompressionWords {
  std::string configuration;
  /// A preset's name or identifier, "none" or "custom".
  std::string compression;
  std::vector<std::string> custom;  // KEY=VALUE
  /// The picture size of custom compression.
  std::string size;
};

/// Why a run does not begin.
struct Refusal {
  Error error;
  int exitCode = 0;
};

/// How a run writes its movies.
struct RunCompression {
  int index = 0;  // of the choice, as CompressionMenu counts
  std::string name;
  std::string identifier;
  /// Extensions without the dot that its movies may have, the one it is meant for first.
  std::vector<std::string> containers;
  std::vector<std::string> customSettings;  // "KEY=VALUE"
  int sizeTag = 0;
  /// 0 when it is not known.
  int picturesPerFrame = 1;

  bool isCompressed() const { return index != CompressionMenu::kNone; }
};

/// Main thread only.
class RunSettings {
 public:
  /// All of it outlives it.
  RunSettings(platform::Runtime& runtime, platform::Settings& stored, BackendModule& module);

  /// Where the choice of compression starts: at the stored one, or at none.
  enum class Start { stored, uncompressed };
  /// Once; nothing when all is right.
  std::optional<Refusal> lay(Start start, const CompressionWords& words, const std::vector<SettingChange>& changes);

  // After lay().
  platform::Settings& live() { return live_; }
  const RunCompression& compression() const { return compression_; }
  /// Finding out what this machine can encode takes a moment, so it is done when it matters.
  const CompressionMenu& menu();
  /// The extension of the run's movies: `wanted`, or what they are meant for when that is empty. An error when `wanted`
  /// cannot hold them.
  Expected<std::string> extensionFor(const std::string& wanted) const;

 private:
  std::optional<int> indexOf(const std::string& word);
  void layStored(Start start);
  std::optional<Refusal> layConfiguration(const std::string& name);
  Expected<int> choiceIn(const StoredConfiguration& configuration);
  std::optional<Refusal> layChanges(const std::vector<SettingChange>& changes);
  std::optional<Refusal> layWords(const CompressionWords& words);
  std::optional<Refusal> layCustom(const std::vector<std::string>& settings);
  std::optional<Refusal> checkAll();
  std::optional<Refusal> readChoice(const CompressionWords& words);
  std::optional<Refusal> readCustom();

  // Constant after construction.
  platform::Settings& stored_;
  BackendModule& module_;

  backend::LayeredSettings live_;
  std::optional<CompressionMenu> menu_;
  RunCompression compression_;
};

/// What is wrong with the words whatever is stored, and on every machine.
Status checkWords(const CompressionWords& words);

}  // namespace zq::host
