#include "host/compression_command_options.h"

#include <CLI/CLI.hpp>
#include <string>

#include "host/backend_module.h"
#include "host/not_empty.h"
#include "host/picture_size.h"
#include "host/setting_options.h"

namespace zq::host {
namespace {

/// A subcommand, with what all of them have.
CLI::App* addAction(CLI::App& config, ConfigCommandOptions& options, const std::string& name, const std::string& what) {
  CLI::App* command = config.add_subcommand(name, what);
  command->callback([&options, name] { options.action = name; });
  command->add_flag("--json", options.json, "Print JSON");
  return command;
}

CLI::App* addNamed(CLI::App& config, ConfigCommandOptions& options, const std::string& name, const std::string& what) {
  CLI::App* command = addAction(config, options, name, what);
  command->add_option("NAME", options.name, "The configuration's name")->required();
  return command;
}

void addSave(CLI::App& config, ConfigCommandOptions& options) {
  CLI::App* save = addNamed(config, options, "save", "Save the settings under a name, with changes");
  save->add_option("--set", options.settings, "KEY=VALUE: a setting in it, repeatable")->expected(1)->take_all();
  addCompression(*save, options.compression);
  save->add_flag("--replace", options.replace, "In place of the one of this name");
  save->footer([] {
    return "Settings for --set:\n" + settingsHelp() + "\nKeys and values for --custom:\n" + customHelp() +
           "\n"
           "Examples:\n"
           "  deckhand config save archive --set captureMovie=true --compression none\n"
           "  deckhand config save web --compression custom --custom codec=h264 --size 640x480";
  });
}

void addFiles(CLI::App& config, ConfigCommandOptions& options) {
  CLI::App* exported = addAction(config, options, "export", "Write configurations to a file");
  exported->add_option("FILE", options.file, "A new file")->required()->check(notEmpty());
  exported->add_option("NAME", options.names, "Only these configurations")->check(notEmpty());
  exported->footer("Examples:\n  deckhand config export station.json\n  deckhand config export station.json archive");
  CLI::App* imported = addAction(config, options, "import", "Add the configurations of a file");
  imported->add_option("FILE", options.file, "What deckhand config export wrote")->required()->check(notEmpty());
  imported->add_flag("--replace", options.replace, "In place of those that have the same names");
  imported->footer("Examples:\n  deckhand config import station.json");
}

}  // namespace

void addCompression(CLI::App& command, CompressionWords& words) {
  command.add_option("--compression", words.compression, "A preset of deckhand presets, none (as received) or custom")
      ->check(notEmpty());
  command.add_option("--custom", words.custom, "KEY=VALUE of custom compression, repeatable")
      ->expected(1)
      ->take_all()
      ->check(notEmpty());
  command.add_option("--size", words.size, "Pictures of custom compression: " + pictureSizes())->check(notEmpty());
}

void addConfiguration(CLI::App& command, CompressionWords& words) {
  command.add_option("--config", words.configuration, "A configuration of deckhand config, for this run")
      ->check(notEmpty());
}

void addFormat(CLI::App& command, std::string& format) {
  command.add_option("--format", format, "Movie files: mov, avi, mkv, dv or mp4 [mov, or as the compression is meant]")
      ->check(CLI::IsMember({"mov", "avi", "mkv", "dv", "mp4"}));
}

void addPresets(CLI::App& app, PresetsOptions& options) {
  CLI::App* command = app.add_subcommand("presets", "List how this machine can compress movies");
  command->add_flag("--json", options.json, "Print JSON");
  command->footer([] {
    return "Keys and values for --compression custom --custom KEY=VALUE:\n" + customHelp() +
           "\nExamples:\n  deckhand presets\n  deckhand presets --json";
  });
}

void addConfig(CLI::App& app, ConfigCommandOptions& options) {
  CLI::App* config = app.add_subcommand("config", "Keep capture settings under names");
  config->require_subcommand(1);
  addAction(*config, options, "list", "List the configurations")->footer("Examples:\n  deckhand config list");
  addNamed(*config, options, "show", "Show what a configuration says")
      ->footer("Examples:\n  deckhand config show archive");
  addSave(*config, options);
  addNamed(*config, options, "delete", "Delete a configuration")->footer("Examples:\n  deckhand config delete archive");
  addFiles(*config, options);
  config->footer(
      "Examples:\n"
      "  deckhand config save archive --set sampleInterval=2\n"
      "  deckhand capture --device tape:holiday.dv --output clips --config archive");
}

std::string customHelp() {
  auto module = loadBackendModule();
  return module.ok() ? module.value()->customCompressionHelp() : "  (" + module.error().text() + ")\n";
}

}  // namespace zq::host
