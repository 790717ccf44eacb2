#include "host/recapture_command.h"

#include <fmt/format.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <utility>

#include "backends/time/real_runtime.h"
#include "host/backend_module.h"
#include "host/exit_codes.h"
#include "host/interrupts.h"
#include "host/recapture_plan.h"
#include "host/recapture_report.h"
#include "host/recapture_run.h"
#include "host/tape_device.h"

namespace zq::host {
namespace {

/// One recapture, from options that were found right.
class RecaptureCommand {
 public:
  RecaptureCommand(const RecaptureOptions& options, Console& console)
      : options_(options), console_(console), files_(options.output, options.format, options.tape) {}

  int run() {
    auto image = openDevice(options_.device);
    if (!image.ok()) return failed(image.error());
    auto module = loadBackendModule();
    if (!module.ok()) return failed(module.error());
    auto catalogue = module.value()->openCatalogue(options_.catalogue, false);
    if (!catalogue.ok()) return failed(catalogue.error());
    auto tape = catalogue.value()->tape(options_.tape);
    if (!tape.ok()) return failed(tape.error());
    if (Status status = checkWritable(*catalogue.value(), tape.value()); !status.ok()) return failed(status.error());
    if (Status status = files_.prepare(); !status.ok()) return failed(status.error());
    return record(*module.value(), *catalogue.value(), tape.value(), image.value());
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

  int record(BackendModule& module, CatalogueStore& store, const CatalogueTape& tape,
             const std::shared_ptr<backend::TapeImage>& image) {
    const std::unique_ptr<platform::Runtime> runtime =
        makeRuntime(options_.realTime ? Pace::realTime : Pace::virtualTime);
    const auto writers = module.makeMovieWriters(console_);
    backend::RealRuntime wall;
    const Interrupts interrupts;
    RecaptureRun recapture(
        {*runtime,
         wall.clock(),
         *writers,
         console_,
         files_,
         image,
         {},
         tape,
         options_.manual,
         lookInterval(options_.realTime),
         [] { return Interrupts::wasAsked(); },
         [&](const std::string& path, const auto& take) { return module.readMovieFrames(path, take); },
         [&](const CatalogueClip& clip, const std::string& path) { return store.setRecaptured(clip.id, path); }});
    return finish(recapture.run());
  }

  int finish(const RecaptureOutcome& outcome) {
    const RecaptureReport report(options_.tape, options_.manual, outcome);
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

  const RecaptureOptions& options_;
  Console& console_;
  ClipFiles files_;
};

}  // namespace

int runRecapture(const RecaptureOptions& options, Console& console) {
  return RecaptureCommand(options, console).run();
}

}  // namespace zq::host
