#include "host/recapture_command.h"

#include <fmt/format.h>

#include <nlohmann/json.hpp>
#include <utility>

#include "backends/time/real_runtime.h"
#include "host/backend_module.h"
#include "host/exit_codes.h"
#include "host/interrupts.h"
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
    if (Status status = files_.prepare(); !status.ok()) return failed(status.error());
    return record(*module.value(), *catalogue.value(), tape.value(), image.value());
  }

 private:
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
    if (outcome.error) return failed({"The recapture ended early", outcome.error->text()});
    if (outcome.interrupted) return kExitInterrupted;
    if (outcome.clips.empty()) {
      return failed({"No clip of tape \"" + options_.tape + "\" is marked",
                     "Mark some with deckhand catalogue mark, as in: deckhand catalogue mark --catalogue " +
                         options_.catalogue + " --tape \"" + options_.tape + "\" --all"});
    }
    const int recaptured = report.count(RecapturedClip::Status::recaptured);
    if (recaptured == static_cast<int>(outcome.clips.size())) return kExitOk;
    return recaptured == 0 ? kExitFailed : kExitFindings;
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
