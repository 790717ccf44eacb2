#pragma once
// One seed: a tape is captured, some of its clips are marked, and they are recaptured, all in virtual time.

#include <chrono>
#include <filesystem>
#include <memory>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "backends/media/movie_frames.h"
#include "backends/media/movie_writer_factory.h"
#include "backends/settings/memory_settings.h"
#include "backends/time/virtual_runtime.h"
#include "capture/controller.h"
#include "capture/settings_keys.h"
#include "host/capture_run.h"
#include "host/catalogue/catalogue_store.h"
#include "host/catalogue_entry.h"
#include "host/recapture_run.h"
#include "simulation/simulation_plan.h"
#include "support/compression_fakes.h"
#include "support/scratch_folder.h"

namespace zq::test {

/// Keeps what is told, for the report of a seed that fails.
class SimulationConsole final : public host::Console {
 public:
  SimulationConsole() : Console(false) {}
  void write(LogLevel, std::string_view message) override { lines.emplace_back(message); }
  std::vector<std::string> lines;
};

/// What one recapture left.
struct Recapture {
  host::CatalogueTape before;
  host::CatalogueTape after;
  host::RecaptureOutcome outcome;
  std::string folder;
  std::set<std::string> filesBefore;
  bool mayBeInterrupted = false;
  std::optional<platform::AVCTransportControls> deckAtEnd;
};

/// The files and links in a folder and those in it, by their paths within it.
inline std::set<std::string> filesIn(const std::string& folder) {
  std::set<std::string> files;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
    if (entry.is_symlink() || !entry.is_directory()) {
      files.insert(entry.path().lexically_relative(folder).string());
    }
  }
  return files;
}

class Simulation {
 public:
  explicit Simulation(const SimulationPlan& plan) : plan_(plan) {
    auto store = host::openCatalogue(scratch_.file("catalogue.db"), true);
    if (!store.ok()) throw std::runtime_error(store.error().text());
    store_ = std::move(store.value());
  }

  void capture() {
    const std::size_t half = plan_.tape.frames().size() / 2;
    switch (plan_.sessions) {
      case Sessions::one:
        return captureSession(0, -1);
      case Sessions::theSameTwice:
        captureSession(0, -1);
        return captureSession(0, -1);
      case Sessions::twoParts:
        captureSession(0, secondsOf(half));
        return captureSession(half, -1);
      case Sessions::interruptedThenWhole:
        captureSession(0, secondsOf(half));
        return captureSession(0, -1);
    }
  }

  void mark() {
    Dice dice(plan_.seed + 1);
    std::vector<std::int64_t> ids;
    for (const auto& sequence : tape().sequences) {
      for (const auto& clip : sequence.clips) {
        if (dice.from(1, 100) <= plan_.percentMarked) ids.push_back(clip.id);
      }
    }
    if (const auto marked = store_->setMarked(ids, true); !marked.ok()) throw std::runtime_error(marked.error().text());
  }

  /// Interrupted after so many looks of the host, or below 0 not at all.
  Recapture recapture(int interruptAfter) {
    TapePlan played = plan_.tape;
    played.shiftDates(plan_.wrongTapeShift);
    const std::string path = scratch_.file("played.dv");
    played.writeTo(path);
    Recapture done;
    done.before = tape();
    done.folder = scratch_.file("recaptured");
    done.mayBeInterrupted = interruptAfter >= 0;
    host::ClipFiles files(done.folder, "dv", kTapeName);
    if (const Status made = files.prepare(); !made.ok()) throw std::runtime_error(made.error().text());
    done.filesBefore = filesIn(done.folder);
    backend::VirtualRuntime runtime(virtualOptions());
    backend::MemorySettings settings(runtime);
    int looks = 0;
    host::RecaptureRun run(
        {runtime,
         runtime.clock(),
         compression_,
         settings,
         writers_,
         console,
         files,
         imageAt(path),
         plan_.deck,
         done.before,
         plan_.manual,
         std::chrono::seconds(1),
         [&] { return interruptAfter >= 0 && looks++ >= interruptAfter; },
         [](const std::string& movie, const auto& take) { return media::readMovieFrames(movie, take); },
         [this](const host::CatalogueClip& clip, const std::string& movie) {
           return store_->setRecaptured(clip.id, movie);
         },
         {}});
    done.outcome = run.run();
    letPass(runtime, timeToStand());
    done.deckAtEnd = run.deck().avcTransportControls();
    done.after = tape();
    return done;
  }

 private:
  static constexpr char kTapeName[] = "tape";

  static std::shared_ptr<backend::TapeImage> imageAt(const std::string& path) {
    auto image = backend::TapeImage::open(path);
    if (!image.ok()) throw std::runtime_error(image.error().text());
    return image.value();
  }
  /// For the last command to be obeyed, and told of.
  platform::Duration timeToStand() const {
    return plan_.deck.reactions.command + plan_.deck.faults.lateStatus + std::chrono::milliseconds(100);
  }
  static void letPass(platform::Runtime& runtime, platform::Duration duration) {
    const auto quitter = runtime.mainLoop().startTimer(duration, [&] { runtime.mainLoop().quit(); });
    runtime.mainLoop().run();
  }

  backend::VirtualOptions virtualOptions() const {
    backend::VirtualOptions options;
    options.seed = plan_.seed;
    return options;
  }
  int secondsOf(std::size_t frames) const { return static_cast<int>(frames) / timebaseOf(plan_.tape.system()); }

  host::CatalogueTape tape() {
    auto found = store_->tape(kTapeName);
    return found.ok() ? found.value() : host::CatalogueTape{};
  }

  /// From this frame on to the end of the tape, or until a user stops it after some seconds.
  void captureSession(std::size_t first, int stopAfter) {
    ++sessions_;
    const std::string path = scratch_.file("tape-" + std::to_string(sessions_) + ".dv");
    plan_.tape.writeTo(path, first);
    backend::VirtualRuntime runtime(virtualOptions());
    backend::MemorySettings settings(runtime);
    ZQACController::initialize(settings);
    settings.setBoolForKey(ZQACFrameSampling, false);
    settings.setBoolForKey(ZQACCaptureMovie, plan_.capturesMovies);
    settings.setIntegerForKey(ZQACNbDropFrame, plan_.leftOutFrames);
    host::ClipFiles files(scratch_.file("captured-" + std::to_string(sessions_)), "dv", kTapeName);
    if (const Status made = files.prepare(); !made.ok()) throw std::runtime_error(made.error().text());
    int looks = 0;
    host::CaptureRun run({runtime,
                          runtime.clock(),
                          settings,
                          compression_,
                          writers_,
                          console,
                          files,
                          imageAt(path),
                          {},
                          std::chrono::seconds(1),
                          [&] { return stopAfter >= 0 && looks++ > stopAfter; }});
    store(files.folder(), run.run().clips);
    std::filesystem::remove(path);
    std::filesystem::remove_all(files.folder());
  }

  void store(const std::string& folder, const std::vector<host::CapturedClip>& clips) {
    const auto noPoster = [](const SharedBytes&, std::int32_t) { return Error{"no poster", "none is wanted"}; };
    const auto stored =
        store_->addSequence(kTapeName, host::CatalogueEntry(folder, noPoster, console).sequenceOf(clips));
    if (!stored.ok()) throw std::runtime_error(stored.error().text());
  }

  const SimulationPlan& plan_;
  ScratchFolder scratch_;
  media::MovieWriterFactory writers_;
  FakeCompression compression_;
  std::unique_ptr<host::CatalogueStore> store_;
  int sessions_ = 0;

 public:
  SimulationConsole console;
};

}  // namespace zq::test
