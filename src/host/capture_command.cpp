#include "host/capture_command.h"

#include <fmt/format.h>

#include <filesystem>
#include <nlohmann/json.hpp>
#include <utility>

#include "backends/time/real_runtime.h"
#include "host/backend_module.h"
#include "host/capture_run.h"
#include "host/exit_codes.h"
#include "host/interrupts.h"
#include "host/run_settings.h"
#include "host/session_catalogue.h"
#include "host/setting_options.h"
#include "host/speed_check.h"
#include "host/tape_device.h"
#include "host/text.h"

namespace zq::host {
namespace {

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

/// Where the files of a capture go, and what of them is made before the first frame.
struct CaptureFiles {
  CaptureFiles(const CaptureOptions& options, std::string movieExtension)
      : extension(std::move(movieExtension)),
        clips(options.output, extension, tapeNameOf(options.device)),
        report(clips) {}

  const std::string extension;
  ClipFiles clips;
  ReportFile report;
  std::unique_ptr<SessionCatalogue> catalogue;  // null without --catalogue
};

/// One capture, from words that were found right.
class CaptureCommand {
 public:
  CaptureCommand(const CaptureOptions& options, Console& console) : options_(options), console_(console) {}

  int run(const std::vector<SettingChange>& changes) {
    auto tape = openDevice(options_.device);
    if (!tape.ok()) return failed(tape.error());
    auto module = loadBackendModule();
    if (!module.ok()) return failed(module.error());
    const std::unique_ptr<platform::Runtime> runtime =
        makeRuntime(options_.realTime ? Pace::realTime : Pace::virtualTimeOnAllProcessors);
    const auto stored = module.value()->makeUserSettings(*runtime);
    ZQACController::initialize(*stored);
    RunSettings settings(*runtime, *stored, *module.value());
    if (const auto refusal = settings.lay(RunSettings::Start::stored, options_.compression, changes)) {
      return refused(*refusal);
    }
    const auto extension = settings.extensionFor(options_.format);
    if (!extension.ok()) return refused({extension.error(), kExitUsage});
    CaptureFiles files(options_, extension.value());
    if (Status status = prepareCatalogue(*module.value(), files); !status.ok()) return failed(status.error());
    // From here on there is something to leave in order.
    const Interrupts interrupts;
    if (Status status = prepareFiles(files); !status.ok()) return failed(status.error());
    return capture(*module.value(), *runtime, settings, files, tape.value());
  }

 private:
  int capture(BackendModule& module, platform::Runtime& runtime, RunSettings& settings, CaptureFiles& files,
              const std::shared_ptr<backend::TapeImage>& tape) {
    const auto writers = module.makeMovieWriters(console_);
    const auto compression = module.makeCompression(console_);
    backend::RealRuntime wall;
    if (options_.realTime)
      warnIfTooSlow(module, *compression, settings, files.extension, *tape, console_, Interrupts::wasAsked);
    CaptureRun run({runtime, wall.clock(), settings.live(), *compression, *writers, console_, files.clips, tape,
                    deckOptions(options_.realTime, settings.compression().isCompressed()),
                    lookInterval(options_.realTime), [] { return Interrupts::wasAsked(); }});
    SessionReport report = run.run();
    report.format = files.extension;
    report.configuration = options_.compression.configuration;
    if (settings.compression().isCompressed()) report.compression = settings.compression().name;
    report.customCompression = settings.compression().customSettings;
    report.findings = run.findings().lines();
    for (std::string& line : run.missingFrames(report)) report.findings.push_back(std::move(line));
    if (run.error()) report.error = run.error()->text();
    return finish(report, settings.live(), files);
  }

  int refused(const Refusal& refusal) {
    console_.error(refusal.error);
    return refusal.exitCode;
  }

  int failed(const Error& error) {
    console_.error(error);
    return kExitFailed;
  }

  /// Before the files: nothing is left behind for a catalogue that cannot be used.
  Status prepareCatalogue(BackendModule& module, CaptureFiles& files) {
    if (options_.catalogue.empty()) return {};
    const std::string tape = options_.tape.empty() ? tapeNameOf(options_.device) : options_.tape;
    files.catalogue = std::make_unique<SessionCatalogue>(module, options_.catalogue, tape, console_);
    return files.catalogue->prepare();
  }

  static Status prepareFiles(CaptureFiles& files) {
    if (Status status = files.clips.prepare(); !status.ok()) return status;
    return files.report.reserve();
  }

  // The report comes first: it has all that a catalogue would be told, if that fails.
  int finish(const SessionReport& report, const platform::Settings& settings, CaptureFiles& files) {
    nlohmann::ordered_json json = report.json(settings);
    const auto path = files.report.write(linesOf(json));
    SessionCatalogue* catalogue = files.catalogue.get();
    const Status stored = catalogue != nullptr ? catalogue->store(files.clips.folder(), report.clips) : Status();
    const bool isStored = catalogue != nullptr && catalogue->stored();
    if (options_.json) {
      if (isStored) json["catalogue"] = catalogue->json();
      fmt::print("{}", linesOf(json));
    } else {
      printSummary(report, path.ok() ? path.value() : "none");
      if (isStored) fmt::print("{}\n", catalogue->summary());
    }
    std::fflush(stdout);
    if (!path.ok()) console_.error(path.error());
    if (!stored.ok()) console_.error(stored.error());
    const int exitCode = tellEnd(report, files.clips.folder());
    return path.ok() && stored.ok() ? exitCode : kExitFailed;
  }

  int tellEnd(const SessionReport& report, const std::string& folder) {
    for (const std::string& line : report.findings) console_.warning(options_.device + ": " + line);
    if (!report.error.empty()) {
      return failed(
          {"The capture ended early after " + counted(report.recorded, "recorded frame") + ", complete in " + folder,
           report.error});
    }
    if (report.ended == "interrupted") return kExitInterrupted;
    return report.findings.empty() && report.dropped == 0 ? kExitOk : kExitFindings;
  }

  const CaptureOptions& options_;
  Console& console_;
};

}  // namespace

int runCapture(const CaptureOptions& options, Console& console) {
  const auto changes = parseSettings(options.settings);
  const Status words = changes.ok() ? checkWords(options.compression) : Status(changes.error());
  if (!words.ok()) {
    console.error(words.error());
    return kExitUsage;
  }
  return CaptureCommand(options, console).run(changes.value());
}

}  // namespace zq::host
