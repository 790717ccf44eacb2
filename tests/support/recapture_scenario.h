#pragma once
// A whole recapture in virtual time: the real controller finds and records clips again that a simulated deck plays.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "backends/deck/simulated_deck.h"
#include "backends/session/session_platform.h"
#include "backends/settings/memory_settings.h"
#include "backends/time/virtual_runtime.h"
#include "outlets/plain_outlets.h"
#include "recapture/controller.h"
#include "support/capture_movies.h"
#include "support/capture_recorders.h"
#include "support/compression_fakes.h"
#include "support/recapture_recorders.h"
#include "support/recapture_tape.h"
#include "support/scratch_folder.h"

namespace zq::test {

/// The frames of a tape, scene by scene. Each frame's id is its place on the tape.
class RecaptureFilm {
 public:
  /// Scenes without marked or catalogued clips may stand between others.
  void add(const ClipPlan& scene) {
    for (int i = 0; i < scene.frames; ++i) {
      FrameRecipe frame;
      frame.system = scene.system;
      frame.id = static_cast<std::uint32_t>(frames_.size());
      frame.timecode = timecodeAtFrame(scene.system, scene.timecode + i);
      frame.date = dateAt(scene.date + i / timebaseOf(scene.system));
      frames_.push_back(frame);
    }
  }
  void writeTo(const std::string& path) const {
    std::ofstream file(path, std::ios::binary);
    for (const FrameRecipe& frame : frames_) {
      const FrameBytes bytes = frameBytesOf(frame);
      file.write(reinterpret_cast<const char*>(bytes.data()), std::ssize(bytes));
    }
    if (!file.flush()) throw std::runtime_error("cannot write " + path);
  }
  /// The place on the tape of a frame, which is compared with the tape's byte by byte.
  std::uint32_t placeOf(std::span<const std::uint8_t> frame) const {
    const std::uint32_t id = frameIdOf(frame);
    EXPECT_LT(id, frames_.size());
    EXPECT_TRUE(std::ranges::equal(frame, frameBytesOf(frames_.at(id)))) << "frame " << id << " is not the tape's";
    return id;
  }

 private:
  std::vector<FrameRecipe> frames_;
};

/// The deck's transport, written down; everything else is the deck's.
class WatchedDeck final : public backend::SimulatedDeck {
 public:
  template <typename... Arguments>
  explicit WatchedDeck(CaptureJournal& journal, Arguments&&... arguments)
      : SimulatedDeck(std::forward<Arguments>(arguments)...), journal_(journal) {}
  void setAVCTransportControls(const platform::AVCTransportControls& controls) override {
    journal_.add("device",
                 "mode " + std::to_string(controls.playbackMode) + " speed " + std::to_string(controls.speed));
    SimulatedDeck::setAVCTransportControls(controls);
  }

 private:
  CaptureJournal& journal_;
};

class RecaptureScenario {
 public:
  /// A tape that holds the clips of these sequences, one after the other.
  explicit RecaptureScenario(const std::vector<std::vector<ClipPlan>>& sequences,
                             const backend::DeckOptions& options = {}, std::uint64_t seed = 0)
      : runtime_(runtimeOptions(seed)), tape(makeTape(sequences)) {
    for (const auto& plans : sequences) {
      for (const ClipPlan& plan : plans) film_.add(plan);
    }
    const std::string path = scratch_.file("tape.dv");
    film_.writeTo(path);
    auto image = backend::TapeImage::open(path);
    if (!image.ok()) throw std::runtime_error(image.error().text());
    deck_ = std::make_shared<WatchedDeck>(journal, runtime_, notifications_, image.value(), options, log);
    RecaptureOutlets outlets;
    outlets.timecodeView = &overlay_;
    outlets.messageText = &messageText_;
    controller_ = std::make_unique<ZQACRecaptureController>(
        RecaptureServices{runtime_, platform_, compression_, settings_, notifications_, alerts, strings_, files, log},
        outlets);
    controller_->setDelegate(&delegate.operations);
    delegate.onEnd = [this] { runtime_.mainLoop().quit(); };
    controller_->setSelectedVideoDevice(deck_);
    controller_->openRecapture();
    controller_->loadATape(tape);
    journal.clear();
  }

  /// Recaptures until the session ends by itself, an hour at most.
  void recapture() {
    controller_->startRecapture();
    const bool ended = letPass(std::chrono::hours(1));
    EXPECT_TRUE(ended) << "the session did not end: " << controller_->processNote();
    letPass(std::chrono::seconds(1));  // the last movie is complete after the session's end
    takeDown();
  }

  /// Whether the session ended before that much time had passed.
  bool letPass(platform::Duration duration) {
    bool passed = false;
    const auto quitter = runtime_.mainLoop().startTimer(duration, [&] {
      passed = true;
      runtime_.mainLoop().quit();
    });
    runtime_.mainLoop().run();
    quitter->invalidate();
    return !passed;
  }

  void takeDown() {
    controller_.reset();
    deck_.reset();
    platform_.finishFiles();
  }

  ZQACRecaptureController& controller() { return *controller_; }

  /// The places on the tape of the frames in the n-th movie.
  std::vector<std::uint32_t> movie(int number) const {
    const std::string path = RecordingRecaptureDelegate::moviePath(number);
    const auto all = movies.movies();
    const auto found = all.find(path);
    if (found == all.end()) return {};
    EXPECT_TRUE(movies.isFinished(path)) << path;
    std::vector<std::uint32_t> places;
    for (const SharedBytes& frame : found->second) places.push_back(film_.placeOf(frame.bytes()));
    return places;
  }

 private:
  static backend::VirtualOptions runtimeOptions(std::uint64_t seed) {
    backend::VirtualOptions options;
    options.seed = seed;
    return options;
  }

  ScratchFolder scratch_;
  RecaptureFilm film_;
  backend::VirtualRuntime runtime_;
  platform::NotificationCenter notifications_;
  FakeStrings strings_;
  outlets::PlainOverlay overlay_{runtime_};

 public:
  const TapeValue tape;
  CaptureJournal journal;
  CaptureLog log;
  RecordingAlerts alerts{journal};
  RecordingFiles files{journal};
  RecordingRecaptureDelegate delegate{journal};
  MemoryMovies movies;

 private:
  RecordingTextField messageText_{journal};
  backend::SessionPlatform platform_{runtime_, movies, log, {}};
  FakeCompression compression_;
  backend::MemorySettings settings_{runtime_};
  std::shared_ptr<WatchedDeck> deck_;
  std::unique_ptr<ZQACRecaptureController> controller_;
};

/// first, first + 1, ... last
inline std::vector<std::uint32_t> placesFromTo(std::uint32_t first, std::uint32_t last) {
  std::vector<std::uint32_t> places;
  for (std::uint32_t place = first; place <= last; ++place) places.push_back(place);
  return places;
}

}  // namespace zq::test
