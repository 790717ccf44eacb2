#pragma once
// A whole capture in virtual time: the real controller records what a simulated deck plays through the session.

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "backends/deck/simulated_deck.h"
#include "backends/session/session_platform.h"
#include "backends/settings/memory_settings.h"
#include "backends/time/virtual_runtime.h"
#include "capture/controller.h"
#include "capture/settings_keys.h"
#include "capture/transport.h"
#include "outlets/plain_outlets.h"
#include "support/capture_movies.h"
#include "support/capture_recorders.h"
#include "support/capture_tape.h"
#include "support/compression_fakes.h"
#include "support/scratch_folder.h"

namespace zq::test {

class CaptureScenario {
 public:
  explicit CaptureScenario(const TapeRecipe& tape, const backend::DeckOptions& options = {}, std::uint64_t seed = 0)
      : tape_(tape), runtime_(runtimeOptions(seed)) {
    ZQACController::initialize(settings);
    const std::string path = scratch_.file("tape.dv");
    tape_.writeTo(path);
    auto image = backend::TapeImage::open(path);
    if (!image.ok()) throw std::runtime_error(image.error().text());
    deck_ = std::make_shared<backend::SimulatedDeck>(runtime_, notifications_, image.value(), options, log);
    outlets_.timecodeView = &overlay;
    controller_ = std::make_unique<ZQACController>(
        CaptureServices{runtime_, platform_, compression_, settings, notifications_, alerts, strings_, log}, outlets_);
    controller_->setDelegate(&delegate.operations);
    const auto end = delegate.operations.accontrollerEndRecord;
    delegate.operations.accontrollerEndRecord = [this, end](ZQACController& ended) {
      end(ended);
      if (waitsForTheEnd_) runtime_.mainLoop().quit();
    };
    keys_ = controller_->keys().addObserver([this](const std::string& key, KeyChange change) {
      if (key == "devicePlaying" && change == KeyChange::didChange) transportChanged();
    });
    controller_->setSelectedVideoDevice(deck_);
  }

  /// Records from where the tape stands until the recording ends by itself, and completes the files.
  void record() {
    waitsForTheEnd_ = true;
    controller_->setRecording(true);
    runtime_.mainLoop().run();
    takeDown();
  }

  void letPass(platform::Duration duration) {
    const auto quitter = runtime_.mainLoop().startTimer(duration, [this] { runtime_.mainLoop().quit(); });
    runtime_.mainLoop().run();
  }

  void takeDown() {
    keys_.reset();
    controller_.reset();
    deck_.reset();
    platform_.finishFiles();
  }

  ZQACController& controller() { return *controller_; }

  /// The places on the tape of the frames in a clip's movie, each compared with the tape's byte by byte.
  std::vector<std::uint32_t> movieOf(int clip) const { return movieAt(delegate.moviePath(clip)); }
  std::vector<std::uint32_t> movieAt(const std::string& path) const {
    const auto all = movies.movies();
    const auto found = all.find(path);
    if (found == all.end()) return {};
    EXPECT_TRUE(movies.isFinished(path)) << path;
    std::vector<std::uint32_t> ids;
    for (const SharedBytes& frame : found->second) ids.push_back(idOnTape(frame.bytes()));
    return ids;
  }
  std::size_t movieCount() const { return movies.movies().size(); }

  /// The same for a clip's thumbnails file. The tape says how large each frame is.
  std::vector<std::uint32_t> thumbnailsOf(int clip, DVSystem system = DVSystem::pal625_50) const {
    std::vector<std::uint32_t> ids;
    for (const SharedBytes& frame : framesOf(delegate.thumbnailsPath(clip), system)) {
      ids.push_back(idOnTape(frame.bytes()));
    }
    return ids;
  }

  std::vector<std::string> delegateCalls() const { return journal.linesOf({"delegate"}); }

 private:
  static backend::VirtualOptions runtimeOptions(std::uint64_t seed) {
    backend::VirtualOptions options;
    options.seed = seed;
    return options;
  }

  std::uint32_t idOnTape(std::span<const std::uint8_t> frame) const {
    const std::uint32_t id = frameIdOf(frame);
    EXPECT_LT(id, tape_.frames().size());
    EXPECT_TRUE(std::ranges::equal(frame, tape_.frames().at(id))) << "frame " << id << " is not that of the tape";
    return id;
  }

  // What a host does: a tape that stands has come to its end, and asking whether it plays ends the recording.
  void transportChanged() {
    const auto controls = deck_->avcTransportControls();
    const bool stands = !controls || *controls == platform::AVCTransportControls{kModeStopped, 0};
    if (stands && asksWhetherItPlays) controller_->isDevicePlaying();
  }

  const TapeRecipe tape_;
  ScratchFolder scratch_;
  backend::VirtualRuntime runtime_;
  platform::NotificationCenter notifications_;
  FakeStrings strings_;
  CaptureOutlets outlets_;

 public:
  CaptureJournal journal;
  CaptureLog log;
  RecordingAlerts alerts{journal};
  backend::MemorySettings settings{runtime_};
  outlets::PlainOverlay overlay{runtime_};
  RecordingDelegate delegate{journal, scratch_.path()};
  MemoryMovies movies;
  bool asksWhetherItPlays = true;

 private:
  backend::SessionPlatform platform_{runtime_, movies, log, {}};
  FakeCompression compression_;
  std::shared_ptr<backend::SimulatedDeck> deck_;
  std::unique_ptr<ZQACController> controller_;
  platform::Observation keys_;
  bool waitsForTheEnd_ = false;
};

}  // namespace zq::test
