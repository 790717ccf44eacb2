#include "host/recapture_command.h"

#include <fmt/format.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <utility>

#include "backends/time/real_runtime.h"
#include "capture/capture_settings.h"
#include "host/backend_module.h"
#include "host/exit_codes.h"
#include "host/frame_witness.h"
#include "host/interrupts.h"
#include "host/picture_size.h"
#include "host/recapture_plan.h"
#include "host/recapture_report.h"
#include "host/recapture_run.h"
#include "host/run_settings.h"
#include "host/speed_check.h"
#include "host/tape_device.h"

namespace zq::host {
namespace {

/// One recapture, from options that were found right.
class RecaptureCommand {
 public:
  RecaptureCommand(const RecaptureOptions& options, Console& console) : options_(options), console_(console) {}

  int run() {
    auto image = openDevice(options_.device);
    if (!image.ok()) return failed(image.error());
    auto module = loadBackendModule();
    if (!module.ok()) return failed(module.error());
    const std::unique_ptr<platform::Runtime> runtime =
        makeRuntime(options_.realTime ? Pace::realTime : Pace::virtualTime);
    const auto stored = module.value()->makeUserSettings(*runtime);
    CaptureSettings::registerDefaults(*stored);
    RunSettings settings(*runtime, *stored, *module.value());
    if (const auto refusal = settings.lay(RunSettings::Start::uncompressed, options_.compression, {})) {
      return refused(*refusal);
    }
    const auto extension = settings.extensionFor(options_.format);
    if (!extension.ok()) return refused({extension.error(), kExitUsage});
    auto catalogue = module.value()->openCatalogue(options_.catalogue, false);
    if (!catalogue.ok()) return failed(catalogue.error());
    auto tape = catalogue.value()->tape(options_.tape);
    if (!tape.ok()) return failed(tape.error());
    if (Status status = checkWritable(*catalogue.value(), tape.value()); !status.ok()) return failed(status.error());
    ClipFiles files(options_.output, extension.value(), options_.tape);
    // From here on there is something to leave in order.
    const Interrupts interrupts;
    if (Status status = files.prepare(); !status.ok()) return failed(status.error());
    return record({*runtime, *module.value(), settings, extension.value(), *catalogue.value(), tape.value(),
                   image.value(), files});
  }

 private:
  // A catalogue that may only be read opens like any other, and the tape would have been played before it is told.
  // Marking what is marked changes nothing.
  static Status checkWritable(CatalogueStore& store, const CatalogueTape& tape) {
    const RecapturePlan plan = planOf(tape);
    if (plan.clips.empty()) return {};
    const auto written = store.setMarked({plan.clips.front().id}, true);
    return written.ok() ? Status() : Status(written.error());
  }

  /// What was opened for a recapture.
  struct Opened {
    platform::Runtime& runtime;
    BackendModule& module;
    RunSettings& settings;
    const std::string& extension;
    CatalogueStore& store;
    const CatalogueTape& tape;
    std::shared_ptr<backend::TapeImage> image;
    ClipFiles& files;
  };

  int record(const Opened& opened) {
    BackendModule& module = opened.module;
    const RunCompression& chosen = opened.settings.compression();
    const auto compression = module.makeCompression(console_);
    const auto writers = module.makeMovieWriters(console_);
    FrameWitness witness(opened.runtime, *writers);
    backend::RealRuntime wall;
    if (options_.realTime) {
      warnIfTooSlow(module, *compression, opened.settings, opened.extension, *opened.image, console_,
                    Interrupts::wasAsked);
    }
    RecaptureRunSetup setup{
        opened.runtime,
        wall.clock(),
        *compression,
        opened.settings.live(),
        *writers,
        console_,
        opened.files,
        opened.image,
        deckOptions(options_.realTime, chosen.isCompressed()),
        opened.tape,
        options_.manual,
        lookInterval(options_.realTime),
        [] { return Interrupts::wasAsked(); },
        [&](const std::string& path, const auto& take) { return module.readMovieFrames(path, take); },
        [&](const CatalogueClip& clip, const std::string& path) { return opened.store.setRecaptured(clip.id, path); },
        {}};
    if (chosen.isCompressed()) {
      setup.compressed = {chosen.index, chosen.sizeTag, &witness,
                          [&](const std::string& path) { return module.countMovieFrames(path); },
                          chosen.picturesPerFrame};
    }
    return finish(RecaptureRun(setup).run(), opened);
  }

  int finish(const RecaptureOutcome& outcome, const Opened& opened) {
    const RunCompression& chosen = opened.settings.compression();
    RecaptureReport report(options_.tape, options_.manual, outcome);
    report.setConfiguration(options_.compression.configuration);
    if (chosen.isCompressed()) {
      report.setCompression(opened.extension, chosen.name, chosen.customSettings, pictureSizeName(chosen.sizeTag));
    }
    if (options_.json) {
      fmt::print("{}\n", report.json().dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace));
    } else if (!outcome.clips.empty()) {
      report.print();
    }
    std::fflush(stdout);
    for (const std::string& line : report.failures()) console_.warning(line);
    if (outcome.error) return failed({"The recapture ended early", outcome.error->text()});
    if (outcome.interrupted) return kExitInterrupted;
    if (outcome.clips.empty()) {
      return failed({"No clip of tape \"" + options_.tape + "\" is marked",
                     "Mark some with deckhand catalogue mark, as in: deckhand catalogue mark --catalogue " +
                         options_.catalogue + " --tape \"" + options_.tape + "\" --all"});
    }
    const int recaptured = report.count(RecapturedClip::Status::recaptured);
    if (recaptured == 0) return kExitFailed;
    // A clip that was recaptured has a reason where the catalogue could not be told of it.
    const bool allDone = recaptured == static_cast<int>(outcome.clips.size()) &&
                         std::ranges::all_of(outcome.clips, &std::string::empty, &RecapturedClip::reason);
    return allDone ? kExitOk : kExitFindings;
  }

  int failed(const Error& error) {
    console_.error(error);
    return kExitFailed;
  }

  int refused(const Refusal& refusal) {
    console_.error(refusal.error);
    return refusal.exitCode;
  }

  const RecaptureOptions& options_;
  Console& console_;
};

}  // namespace

int runRecapture(const RecaptureOptions& options, Console& console) {
  if (Status words = checkWords(options.compression); !words.ok()) {
    console.error(words.error());
    return kExitUsage;
  }
  return RecaptureCommand(options, console).run();
}

}  // namespace zq::host
