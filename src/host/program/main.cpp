// The command line: options in, one command run, its exit code out.

#include <CLI/CLI.hpp>
#include <csignal>
#include <cstdio>
#include <exception>
#include <functional>
#include <string>

#include "host/capture_command.h"
#include "host/catalogue_command.h"
#include "host/catalogue_command_options.h"
#include "host/compression_command_options.h"
#include "host/config_command.h"
#include "host/console.h"
#include "host/devices_command.h"
#include "host/exit_codes.h"
#include "host/inspect_command.h"
#include "host/make_tape_command.h"
#include "host/not_empty.h"
#include "host/presets_command.h"
#include "host/recapture_command.h"
#include "host/setting_options.h"

namespace {

using namespace zq::host;  // NOLINT(google-build-using-namespace): this file is the program

constexpr char kExitCodes[] =
    "Exit codes: 0 done; 1 not done, or not to the end (what was captured is complete); 2 wrong command line;\n"
    "3 done, but the tape has something to look at; 130 ended by Ctrl-C.";

void addDevices(CLI::App& app, DevicesOptions& options) {
  CLI::App* command = app.add_subcommand("devices", "List what can be captured from");
  command->add_flag("--json", options.json, "Print JSON");
  command->footer("Examples:\n  deckhand devices\n  deckhand devices --json");
}

void addInspect(CLI::App& app, InspectOptions& options) {
  CLI::App* command = app.add_subcommand("inspect", "Say what is on a tape image: its scenes, or every frame");
  command->add_option("TAPE", options.tape, "A raw DV file")->required();
  command->add_flag("--frames", options.frames, "One row a frame instead of the scenes");
  CLI::Option* json = command->add_flag("--json", options.json, "Print JSON");
  command->add_flag("--csv", options.csv, "Print CSV")->excludes(json);
  command->footer(
      "Examples:\n"
      "  deckhand inspect holiday.dv\n"
      "  deckhand inspect holiday.dv --json\n"
      "  deckhand inspect holiday.dv --frames --csv > frames.csv");
}

void addCapture(CLI::App& app, CaptureOptions& options) {
  CLI::App* command = app.add_subcommand("capture", "Capture a tape into clips, cut where the recording date jumps");
  command->add_option("--device", options.device, "tape:PATH plays a tape image")->required();
  command->add_option("--output", options.output, "Folder for the clips; made if need be")->required();
  addFormat(*command, options.format);
  addConfiguration(*command, options.compression);
  addCompression(*command, options.compression);
  command->add_flag("--real-time", options.realTime, "At the deck's own pace, not as fast as the machine can");
  command->add_option("--set", options.settings, "KEY=VALUE: a setting for this run, repeatable")
      ->expected(1)
      ->take_all();
  command->add_flag("--json", options.json, "Print the session report as JSON");
  CLI::Option* catalogue =
      command->add_option("--catalogue", options.catalogue, "Store the clips in this catalogue, made if need be")
          ->check(notEmpty());
  command->add_option("--tape", options.tape, "As this tape of the catalogue [name of the tape image]")
      ->check(notEmpty())
      ->needs(catalogue);
  command->footer("Settings for --set:\n" + settingsHelp() +
                  "\n"
                  "Keys and values for --custom: deckhand presets --help\n"
                  "\n"
                  "Examples:\n"
                  "  deckhand capture --device tape:holiday.dv --output clips\n"
                  "  deckhand capture --device tape:holiday.dv --output clips --format mkv --json\n"
                  "  deckhand capture --device tape:holiday.dv --output clips --set sampleInterval=3\n"
                  "  deckhand capture --device tape:holiday.dv --output clips --compression h.264 --real-time\n"
                  "  deckhand capture --device tape:holiday.dv --output clips --config archive\n"
                  "  deckhand capture --device tape:holiday.dv --output clips --catalogue tapes.db --tape \"Tape 7\"\n"
                  "  deckhand capture --device tape:holiday.dv --output pictures --set captureMovie=false");
}

void addRecapture(CLI::App& app, RecaptureOptions& options) {
  CLI::App* command =
      app.add_subcommand("recapture", "Find the marked clips of a catalogued tape and capture them again");
  command->add_option("--device", options.device, "tape:PATH plays a tape image")->required();
  command->add_option("--catalogue", options.catalogue, "The catalogue: a file, or a postgresql:// URL")
      ->required()
      ->check(notEmpty());
  command->add_option("--tape", options.tape, "The tape in the device, by its name in the catalogue")
      ->required()
      ->check(notEmpty());
  command->add_option("--output", options.output, "Folder for the movies; made if need be")->required();
  addFormat(*command, options.format);
  addConfiguration(*command, options.compression);
  addCompression(*command, options.compression);
  command->add_flag("--manual", options.manual,
                    "You move the tape to a session's place; its marked clips are captured");
  command->add_flag("--real-time", options.realTime, "At the deck's own pace, not as fast as the machine can");
  command->add_flag("--json", options.json, "Print the report as JSON");
  command->footer(
      "Examples:\n"
      "  deckhand catalogue mark --catalogue tapes.db --clip 3 --clip 7\n"
      "  deckhand recapture --device tape:holiday.dv --catalogue tapes.db --tape holiday --output again\n"
      "  deckhand recapture --device tape:holiday.dv --catalogue tapes.db --tape holiday --output again "
      "--compression h.264");
}

void addMakeTape(CLI::App& app, MakeTapeOptions& options) {
  CLI::App* command = app.add_subcommand("make-tape", "Make a tape image to try things out with");
  command->add_option("OUT", options.output, "The raw DV file to make, as in try.dv")->required();
  command->add_option("--system", options.system, "pal (625/50) or ntsc (525/60)")
      ->check(CLI::IsMember({"pal", "ntsc"}))
      ->capture_default_str();
  command->add_option("--scene", options.scenes, "DATE,SECONDS[,TIMECODE], repeatable")->expected(1)->take_all();
  command->footer(
      "A DATE is YYYY-MM-DDTHH:MM:SS, or none. Without a TIMECODE (HH:MM:SS:FF) it runs on.\n\n"
      "Examples:\n"
      "  deckhand make-tape try.dv\n"
      "  deckhand make-tape try.dv --system ntsc --scene 2004-07-15T13:30:45,10 --scene "
      "2004-07-15T14:00:00,5,00:00:00:00");
}

/// Whether everything that was printed has arrived.
bool outputArrived() {
  return std::fflush(stdout) == 0 && std::ferror(stdout) == 0;
}

/// The word that stands where a command should, when it is none; "" otherwise.
std::string unknownCommand(const CLI::App& app, int argc, char** argv) {
  if (argc < 2 || argv[1][0] == '-') return "";
  const std::string word = argv[1];
  for (const CLI::App* command : app.get_subcommands({})) {
    if (command->check_name(word)) return "";
  }
  return word;
}

/// What each command was told.
struct Options {
  bool verbose = false;
  DevicesOptions devices;
  InspectOptions inspect;
  CaptureOptions capture;
  MakeTapeOptions makeTape;
  RecaptureOptions recapture;
  CatalogueCommandOptions catalogue;
  PresetsOptions presets;
  ConfigCommandOptions config;
};

int runCommand(const CLI::App& app, const Options& options) {
  Console console(options.verbose);
  if (app.got_subcommand("devices")) return runDevices(options.devices);
  if (app.got_subcommand("inspect")) return runInspect(options.inspect, console);
  if (app.got_subcommand("capture")) return runCapture(options.capture, console);
  if (app.got_subcommand("recapture")) return runRecapture(options.recapture, console);
  if (app.got_subcommand("catalogue")) return runCatalogue(options.catalogue, console);
  if (app.got_subcommand("presets")) return runPresets(options.presets, console);
  if (app.got_subcommand("config")) return runConfig(options.config, console);
  return runMakeTape(options.makeTape, console);
}

/// Parses the words and runs the command that they name.
int parseAndRun(CLI::App& app, const Options& options, int argc, char** argv) {
  if (const std::string word = unknownCommand(app, argc, argv); !word.empty()) {
    Console(false).error({"There is no command \"" + word + "\"", "Try deckhand --help."});
    return kExitUsage;
  }
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? kExitOk : kExitUsage;
  }
  return runCommand(app, options);
}

int run(int argc, char** argv) {
  CLI::App app("Deckhand captures DV tape: it cuts what a camcorder plays into clips where the recording date jumps.",
               "deckhand");
  Options options;
  app.set_version_flag("--version", "deckhand " DECKHAND_VERSION);
  app.add_flag("--verbose", options.verbose, "Tell what happens on the way, too");
  app.require_subcommand(1);
  app.fallthrough();
  app.footer(std::string("Examples:\n"
                         "  deckhand make-tape try.dv\n"
                         "  deckhand inspect try.dv\n"
                         "  deckhand capture --device tape:try.dv --output clips\n\n") +
             kExitCodes);
  addDevices(app, options.devices);
  addInspect(app, options.inspect);
  addCapture(app, options.capture);
  addRecapture(app, options.recapture);
  addMakeTape(app, options.makeTape);
  addCatalogue(app, options.catalogue);
  addPresets(app, options.presets);
  addConfig(app, options.config);
  const int exitCode = parseAndRun(app, options, argc, argv);
  if (outputArrived()) return exitCode;
  Console(false).error({"Cannot write the output", "The disk may be full, or its reader has gone."});
  return exitCode == kExitOk || exitCode == kExitFindings ? kExitFailed : exitCode;
}

}  // namespace

int main(int argc, char** argv) {
  // A file that may not grow any more is then an error of its write, which is told, and not the end of the program.
  std::signal(SIGXFSZ, SIG_IGN);
  try {
    return run(argc, argv);
  } catch (const std::exception& error) {
    Console(false).error({"Deckhand has a fault of its own and stopped", error.what()});
    return kExitInternal;
  }
}
