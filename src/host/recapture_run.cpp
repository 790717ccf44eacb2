#include "host/recapture_run.h"

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <utility>

#include "backends/deck/simulated_deck.h"
#include "backends/files/system_files.h"
#include "host/deferred_aliases.h"
#include "host/progress_line.h"
#include "recapture/positioning.h"
#include "recapture/tape_search.h"

namespace zq::host {
namespace {

using std::chrono::duration_cast;
using std::chrono::seconds;

// For finding the first frame, settling, prerolls and a deck that is slow to obey.
constexpr seconds kForAllElse{300};
// A recording is set up a preroll before its clip; where two clips have seconds in common it may be the other one's.
constexpr seconds kBesidesTheClip{120};
constexpr seconds kForEachClip{120};
constexpr seconds kForTheSession{600};

double lengthOf(const CatalogueClip& clip) {
  const int frames =
      framesFromTo(valueWithSMPTETime(*clip.startTimecode), valueWithSMPTETime(*clip.endTimecode), clip.timebase);
  return static_cast<double>(frames) / clip.timebase;
}

bool endsBefore(const CatalogueClip& clip, const DateValue& date) {
  return date && date->timeIntervalSinceDate(*clip.recordingDate) > lengthOf(clip) + 1;
}

platform::Duration durationOf(double secondsLong) {
  return duration_cast<platform::Duration>(std::chrono::duration<double>(secondsLong));
}

}  // namespace

/// What lives while the recapture runs; each uses those before it.
struct RecaptureRun::Parts {
  Parts(const RecaptureRunSetup& setup, const RecapturePlan& plan)
      : alerts(setup.runtime, setup.console),
        ledger({setup.runtime, files, setup.readMovie, setup.recaptured, setup.console, setup.compressed}, setup.files,
               plan.clips),
        deck(std::make_shared<backend::SimulatedDeck>(setup.runtime, notifications, setup.tape, setup.deck,
                                                      setup.console)),
        progress(setup.wall) {}

  platform::NotificationCenter notifications;
  PlainStrings strings;
  backend::SystemFiles files;
  DeferredAliases controllersFiles{files};
  AlertList alerts;
  RecaptureLedger ledger;
  std::shared_ptr<backend::SimulatedDeck> deck;
  ProgressLine progress;
};

RecaptureRun::RecaptureRun(const RecaptureRunSetup& setup)
    : setup_(setup), plan_(planOf(setup.catalogueTape)), parts_(std::make_unique<Parts>(setup, plan_)) {}

RecaptureRun::~RecaptureRun() = default;

const platform::QTCaptureDevice& RecaptureRun::deck() const {
  return *parts_->deck;
}

RecaptureOutcome RecaptureRun::run() {
  RecaptureLedger& ledger = parts_->ledger;
  const auto folder = ledger.makeAliasFolder();
  const platform::TimePoint start = setup_.runtime.clock().now();
  deadline_ = start + durationOf(3 * lengthOfTape()) + kForTheSession +
              kForEachClip * static_cast<std::int64_t>(plan_.clips.size());
  if (!folder.ok()) {
    outcome_.error = folder.error();
    goOn_ = false;
  }
  const auto makeRecords = setup_.manual ? manualRecords : automaticRecords;
  while (goOn_) {
    const std::vector<CatalogueClip> wanted = ledger.waiting();
    runPass(makeRecords(setup_.catalogueTape, wanted, folder.value()), wanted);
    goOn_ = goOn_ && !setup_.manual && !ledger.waiting().empty() && ledger.waiting().size() < wanted.size();
  }
  if (setup_.manual) {
    ledger.settle(RecapturedClip::Status::failed,
                  "It is not of the session that the tape was in; move the tape to its place and start again.");
  }
  ledger.settle(RecapturedClip::Status::failed, outcome_.error ? outcome_.error->text() : "It was not reached.");
  outcome_.tapeSeconds = std::chrono::duration<double>(setup_.runtime.clock().now() - start).count();
  outcome_.clips = ledger.clips();
  for (const UnreachableClip& unreachable : plan_.unreachable) {
    outcome_.clips.push_back({unreachable.clip, RecapturedClip::Status::failed, unreachable.reason, {}, {}, 0});
  }
  outcome_.alerts = parts_->alerts.shown();
  return outcome_;
}

platform::MovieWriterFactory& RecaptureRun::writers() const {
  if (setup_.compressed.areCompressed()) return *setup_.compressed.witness;
  return setup_.writers;
}

RecapturePass::End RecaptureRun::runPass(const TapeValue& records, const std::vector<CatalogueClip>& wanted) {
  RecapturePass pass({setup_.runtime, setup_.compression, setup_.settings, writers(), parts_->notifications,
                      parts_->controllersFiles, parts_->strings, parts_->alerts, setup_.console, parts_->ledger,
                      parts_->progress, parts_->deck, records, setup_.manual, limitsFor(wanted), setup_.lookEvery,
                      setup_.interrupted, deadline_, setup_.compressed});
  const RecapturePass::End end = pass.run();
  goOn_ = learnFrom(end, pass);
  return end;
}

bool RecaptureRun::learnFrom(RecapturePass::End end, const RecapturePass& pass) {
  const DateValue& reached = pass.lastDate();
  const auto isLookedFor = [&](const CatalogueClip& clip) { return std::to_string(clip.id) == pass.clipLookedFor(); };
  switch (end) {
    case RecapturePass::End::ended:
      return true;
    case RecapturePass::End::gaveUpClip:
      giveUp(isLookedFor, "It was not found, or the frames at its start did not come by as the catalogue says.");
      return true;
    case RecapturePass::End::gaveUpAtEnd:
      giveUp(
          [&](const CatalogueClip& clip) { return isLookedFor(clip) || compareDates(clip.recordingDate, reached) > 0; },
          "The tape ends with an earlier recording date. Is it the right tape?");
      return true;
    case RecapturePass::End::gaveUpAtBeginning:
      // The first clip of the tape is before the last date that was seen, too.
      giveUp([&](const CatalogueClip& clip) { return isLookedFor(clip) || endsBefore(clip, reached); },
             "The tape begins with a later recording date, so no way leads to it. Is it the right tape?");
      return true;
    case RecapturePass::End::gaveUpUndated:
      giveUp([](const CatalogueClip&) { return true; },
             "The tape has no frames with a recording date and a timecode to find it by.");
      return false;
    case RecapturePass::End::interrupted:
      outcome_.interrupted = true;
      parts_->ledger.settle(RecapturedClip::Status::cancelled, "The recapture was stopped.");
      return false;
    case RecapturePass::End::overdue:
      outcome_.error = Error{"The recapture took longer than the tape can ask for, and was ended",
                             "Look at the deck, and recapture the clips that are left one by one."};
      return false;
    case RecapturePass::End::error:
      outcome_.error = pass.error();
      return false;
  }
  return false;
}

void RecaptureRun::giveUp(const std::function<bool(const CatalogueClip&)>& which, const std::string& reason) {
  for (const CatalogueClip& clip : parts_->ledger.waiting()) {
    if (which(clip)) parts_->ledger.fail(clip.id, reason);
  }
}

double RecaptureRun::lengthOfTape() const {
  std::error_code failed;
  const auto size = std::filesystem::file_size(setup_.tape->path(), failed);
  if (failed) return 0;
  const FrameRate rate = frameRateOf(setup_.tape->system());
  return static_cast<double>(size) / static_cast<double>(frameSizeOf(setup_.tape->system())) *
         static_cast<double>(rate.denominator) / static_cast<double>(rate.numerator);
}

TapeWatch::Limits RecaptureRun::limitsFor(const std::vector<CatalogueClip>& wanted) const {
  double longest = 0;
  for (const CatalogueClip& clip : wanted) longest = std::max(longest, lengthOf(clip));
  return {durationOf(lengthOfTape() + longest) + kForAllElse, durationOf(longest) + kBesidesTheClip};
}

}  // namespace zq::host
