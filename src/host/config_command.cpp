#include "host/config_command.h"

#include <fmt/format.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <system_error>
#include <utility>

#include "backends/time/real_runtime.h"
#include "capture/capture_settings.h"
#include "capture/settings_keys.h"
#include "host/config_command_show.h"
#include "host/configuration_json.h"
#include "host/configuration_store.h"
#include "host/exit_codes.h"
#include "host/new_file.h"
#include "host/text.h"

namespace zq::host {
namespace {

namespace fs = std::filesystem;
using nlohmann::ordered_json;
using Configurations = std::vector<StoredConfiguration>;

// A thousand configurations with settings of custom compression are a tenth of it.
constexpr std::uintmax_t kLargestFile{16 << 20};

Expected<std::string> readFile(const std::string& path) {
  std::error_code failed;
  const auto type = fs::status(path, failed).type();
  if (type == fs::file_type::not_found) return Error{"There is no file " + path, ""};
  if (type != fs::file_type::regular) return Error{path + " is not a file of configurations", "It is no plain file."};
  if (fs::file_size(path, failed) > kLargestFile) {
    return Error{path + " is not a file of configurations", "It is much larger than any."};
  }
  std::ifstream file(path, std::ios::binary);
  std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  if (!file.is_open() || file.bad()) return Error{"Cannot read " + path, "Look at who may read it."};
  return text;
}

/// One call of the command, with the user's settings open.
class ConfigCall {
 public:
  ConfigCall(const ConfigCommandOptions& options, BackendModule& module, platform::Runtime& runtime,
             platform::Settings& stored)
      : options_(options), module_(module), runtime_(runtime), stored_(stored), store_(stored, module) {}

  /// Nothing when it is done, and told.
  std::optional<Refusal> run() {
    if (options_.action == "list") return list();
    if (options_.action == "show") return show();
    if (options_.action == "save") return save();
    if (options_.action == "delete") return remove();
    if (options_.action == "export") return exportThem();
    return importThem();
  }

 private:
  static Refusal failed(Error error) { return {std::move(error), kExitFailed}; }

  std::optional<Refusal> list() {
    const auto all = store_.all();
    if (!all.ok()) return failed(all.error());
    const CompressionMenu menu(module_.compressionPresets());
    options_.json ? printListJson(all.value(), menu) : printList(all.value(), menu);
    return std::nullopt;
  }

  std::optional<Refusal> show() {
    const auto found = store_.named(options_.name);
    if (!found.ok()) return failed(found.error());
    options_.json ? printJson(configurationJson(found.value())) : printConfiguration(found.value(), module_);
    return std::nullopt;
  }

  std::optional<Refusal> save() {
    if (Status named = checkConfigurationName(options_.name); !named.ok()) return Refusal{named.error(), kExitUsage};
    const auto changes = parseSettings(options_.settings);
    if (!changes.ok()) return Refusal{changes.error(), kExitUsage};
    if (Status words = checkWords(options_.compression); !words.ok()) return Refusal{words.error(), kExitUsage};
    if (sets(changes.value(), ZQACCaptureMovieVolume)) return Refusal{volumeIsNotKept(), kExitUsage};
    auto all = store_.all();
    if (!all.ok()) return failed(all.error());
    if (!options_.replace && findConfiguration(all.value(), options_.name) != nullptr) return nameTaken(options_.name);
    CaptureSettings::registerDefaults(stored_);
    RunSettings settings(runtime_, stored_, module_);
    if (auto refusal = settings.lay(RunSettings::Start::stored, options_.compression, changes.value())) return refusal;
    StoredConfiguration saved{configurationOf(settings.live()), settings.compression().identifier};
    saved.values[ZQACConfName] = options_.name;
    putConfiguration(all.value(), std::move(saved));
    return keep(all.value(), "saved", {options_.name});
  }

  static bool sets(const std::vector<SettingChange>& changes, const std::string& key) {
    return std::ranges::find(changes, key, &SettingChange::key) != changes.end();
  }

  static Error volumeIsNotKept() {
    return {std::string("--set ") + ZQACCaptureMovieVolume + ": a configuration does not keep the volume",
            "Leave it out; give it to deckhand capture."};
  }

  std::optional<Refusal> remove() {
    auto all = store_.all();
    if (!all.ok()) return failed(all.error());
    if (findConfiguration(all.value(), options_.name) == nullptr) {
      return failed(noSuchConfiguration(options_.name, all.value()));
    }
    std::erase_if(all.value(), [&](const StoredConfiguration& held) { return held.name() == options_.name; });
    return keep(all.value(), "deleted", {options_.name});
  }

  std::optional<Refusal> exportThem() {
    const auto all = store_.all();
    if (!all.ok()) return failed(all.error());
    Configurations chosen = options_.names.empty() ? all.value() : Configurations();
    for (const std::string& name : options_.names) {
      const StoredConfiguration* found = findConfiguration(all.value(), name);
      if (found == nullptr) return failed(noSuchConfiguration(name, all.value()));
      putConfiguration(chosen, *found);
    }
    const Status written = writeNewFile(options_.file, configurationsJson(chosen).dump(2) + "\n");
    if (!written.ok()) return failed(written.error());
    tell("exported", namesOf(chosen));
    return std::nullopt;
  }

  std::optional<Refusal> importThem() {
    const auto text = readFile(options_.file);
    if (!text.ok()) return failed(text.error());
    const auto read = readConfigurations(text.value(), options_.file);
    if (!read.ok()) return failed(read.error());
    auto all = store_.all();
    if (!all.ok()) return failed(all.error());
    for (const StoredConfiguration& added : read.value()) {
      if (Status usable = checkCustomSettings(added); !usable.ok()) return failed(usable.error());
      if (!options_.replace && findConfiguration(all.value(), added.name()) != nullptr) return nameTaken(added.name());
      putConfiguration(all.value(), added);
    }
    return keep(all.value(), "imported", namesOf(read.value()));
  }

  /// Data that nobody can read would be refused at every use.
  Status checkCustomSettings(const StoredConfiguration& configuration) {
    const auto found = configuration.values.find(ZQACConfCompressionData);
    if (found == configuration.values.end()) return {};
    const auto custom = module_.readCustomCompression(std::get<std::vector<std::uint8_t>>(found->second));
    if (custom.ok()) return {};
    return Error{options_.file + " was not imported: the settings of custom compression in \"" + configuration.name() +
                     "\" cannot be read, and nothing changed",
                 custom.error().informative};
  }

  static Refusal nameTaken(const std::string& name) {
    return failed({"There is a configuration \"" + name + "\" already, and it was not touched",
                   "Use another name, or --replace."});
  }

  static std::vector<std::string> namesOf(const Configurations& configurations) {
    std::vector<std::string> names;
    names.reserve(configurations.size());
    for (const StoredConfiguration& configuration : configurations) names.push_back(configuration.name());
    return names;
  }

  std::optional<Refusal> keep(const Configurations& configurations, const char* what,
                              const std::vector<std::string>& names) {
    if (Status kept = store_.replaceAll(configurations); !kept.ok()) return failed(kept.error());
    tell(what, names);
    return std::nullopt;
  }

  void tell(const char* what, const std::vector<std::string>& names) const {
    if (options_.json) return printJson({{what, names}});
    fmt::print("{} {}{}{}\n", counted(static_cast<std::int64_t>(names.size()), "configuration"), what,
               names.empty() ? "" : ": ", fmt::join(names, ", "));
  }

  static void printJson(const ordered_json& json) { fmt::print("{}\n", json.dump(2)); }

  const ConfigCommandOptions& options_;
  BackendModule& module_;
  platform::Runtime& runtime_;
  platform::Settings& stored_;
  ConfigurationStore store_;
};

}  // namespace

int runConfig(const ConfigCommandOptions& options, Console& console) {
  auto module = loadBackendModule();
  if (!module.ok()) {
    console.error(module.error());
    return kExitFailed;
  }
  backend::RealRuntime runtime;
  const auto stored = module.value()->makeUserSettings(runtime);
  const auto refusal = ConfigCall(options, *module.value(), runtime, *stored).run();
  if (!refusal) return kExitOk;
  console.error(refusal->error);
  return refusal->exitCode;
}

}  // namespace zq::host
