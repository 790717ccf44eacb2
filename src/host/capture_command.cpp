#include "host/capture_command.h"

#include <fmt/format.h>

#include <filesystem>
#include <nlohmann/json.hpp>
#include <utility>

#include "backends/settings/layered_settings.h"
#include "backends/time/real_runtime.h"
#include "host/backend_module.h"
#include "host/capture_run.h"
#include "host/exit_codes.h"
#include "host/interrupts.h"
#include "host/session_catalogue.h"
#include "host/setting_options.h"
#include "host/tape_device.h"
#include "host/text.h"

namespace zq::host {
namespace {

Expected<std::vector<SettingChange>> parseSettings(const std::vector<std::string>& texts) {
  std::vector<SettingChange> changes;
  for (const std::string& text : texts) {
    auto change = parseSetting(text);
    if (!change.ok()) return change.error();
    changes.push_back(change.value());
  }
  return changes;
}

/// The live settings as they are at the start, and the changes for this run only. A run keeps what it began with.
Status layRunSettings(backend::LayeredSettings& run, const std::vector<SettingChange>& changes) {
  for (const SettingChange& change : changes) run.overlayObjectForKey(change.key, change.value);
  for (const std::string& key : settingKeys()) {
    auto value = run.objectForKey(key);
    if (!value) continue;
    if (Status status = checkStored(key, *value); !status.ok()) return status;
    run.overlayObjectForKey(key, std::move(*value));
  }
  return {};
}

std::string linesOf(const nlohmann::ordered_json& json) {
  return json.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n";
}

// Fits a terminal of 80 columns; a clip's date is in its name.
void printSummary(const SessionReport& report, const std::string& reportPath) {
  fmt::print("{:>4}  {:<11}  {:<11}  {:>7}  {:>6}  {}\n", "clip", "from", "to", "frames", "thumbs", "file");
  for (const CapturedClip& clip : report.clips) {
    fmt::print("{:>4}  {:<11}  {:<11}  {:>7}  {:>6}  {}\n", clip.info.clipId.value_or(""),
               textOf(clip.info.clipStartTimecode), textOf(clip.info.clipEndTimecode), clip.movieFrames,
               clip.thumbnailFrames, clip.moviePath.empty() ? clip.thumbnailPath : clip.moviePath);
  }
  fmt::print("\n{}, {} played, {} recorded, {} dropped\nReport: {}\n",
             counted(static_cast<std::int64_t>(report.clips.size()), "clip"), counted(report.delivered, "frame"),
             report.recorded, report.dropped, reportPath);
}

/// One capture, from options that were found right.
class CaptureCommand {
 public:
  CaptureCommand(const CaptureOptions& options, Console& console)
      : options_(options),
        console_(console),
        files_(options.output, options.format, tapeNameOf(options.device)),
        reportFile_(files_) {}

  int run(const std::vector<SettingChange>& changes) {
    auto tape = openDevice(options_.device);
    if (!tape.ok()) return failed(tape.error());
    auto module = loadBackendModule();
    if (!module.ok()) return failed(module.error());
    const std::unique_ptr<platform::Runtime> runtime =
        makeRuntime(options_.realTime ? Pace::realTime : Pace::virtualTimeOnAllProcessors);
    const auto stored = module.value()->makeUserSettings(*runtime);
    ZQACController::initialize(*stored);
    backend::LayeredSettings settings(*runtime, *stored);
    if (Status status = layRunSettings(settings, changes); !status.ok()) return failed(status.error());
    if (Status status = prepare(*module.value()); !status.ok()) return failed(status.error());
    const auto writers = module.value()->makeMovieWriters(console_);
    backend::RealRuntime wall;
    const Interrupts interrupts;
    CaptureRun run({*runtime,
                    wall.clock(),
                    settings,
                    *writers,
                    console_,
                    files_,
                    tape.value(),
                    {},
                    lookInterval(options_.realTime),
                    [] { return Interrupts::wasAsked(); }});
    SessionReport report = run.run();
    report.format = options_.format;
    report.findings = run.findings().lines();
    for (std::string& line : run.missingFrames(report)) report.findings.push_back(std::move(line));
    if (run.error()) report.error = run.error()->text();
    return finish(report, settings);
  }

 private:
  int failed(const Error& error) {
    console_.error(error);
    return kExitFailed;
  }

  /// All that is written to, in this order: nothing is left behind for a catalogue that cannot be used.
  Status prepare(BackendModule& module) {
    if (!options_.catalogue.empty()) {
      const std::string tape = options_.tape.empty() ? tapeNameOf(options_.device) : options_.tape;
      catalogue_ = std::make_unique<SessionCatalogue>(module, options_.catalogue, tape, console_);
      if (Status status = catalogue_->prepare(); !status.ok()) return status;
    }
    if (Status status = files_.prepare(); !status.ok()) return status;
    return reportFile_.reserve();
  }

  // The report comes first: it has all that a catalogue would be told, if that fails.
  int finish(const SessionReport& report, const platform::Settings& settings) {
    nlohmann::ordered_json json = report.json(settings);
    const auto path = reportFile_.write(linesOf(json));
    const Status stored = catalogue_ ? catalogue_->store(files_.folder(), report.clips) : Status();
    const bool isStored = catalogue_ && catalogue_->stored();
    if (options_.json) {
      if (isStored) json["catalogue"] = catalogue_->json();
      fmt::print("{}", linesOf(json));
    } else {
      printSummary(report, path.ok() ? path.value() : "none");
      if (isStored) fmt::print("{}\n", catalogue_->summary());
    }
    std::fflush(stdout);
    if (!path.ok()) console_.error(path.error());
    if (!stored.ok()) console_.error(stored.error());
    const int exitCode = tellEnd(report);
    return path.ok() && stored.ok() ? exitCode : kExitFailed;
  }

  int tellEnd(const SessionReport& report) {
    for (const std::string& line : report.findings) console_.warning(options_.device + ": " + line);
    if (!report.error.empty()) {
      return failed({"The capture ended early after " + counted(report.recorded, "recorded frame") + ", complete in " +
                         files_.folder(),
                     report.error});
    }
    if (report.ended == "interrupted") return kExitInterrupted;
    return report.findings.empty() && report.dropped == 0 ? kExitOk : kExitFindings;
  }

  const CaptureOptions& options_;
  Console& console_;
  ClipFiles files_;
  ReportFile reportFile_;
  std::unique_ptr<SessionCatalogue> catalogue_;  // null without --catalogue
};

}  // namespace

int runCapture(const CaptureOptions& options, Console& console) {
  const auto changes = parseSettings(options.settings);
  if (!changes.ok()) {
    console.error(changes.error());
    return kExitUsage;
  }
  return CaptureCommand(options, console).run(changes.value());
}

}  // namespace zq::host
