#pragma once
// One recapture from the command line: the marked clips of a tape, in as many sessions of the controller as they need.

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "backends/deck/deck_options.h"
#include "backends/deck/tape_image.h"
#include "base/status.h"
#include "host/alert_list.h"
#include "host/catalogue/catalogue_store.h"
#include "host/compressed_movies.h"
#include "host/console.h"
#include "host/recapture_ledger.h"
#include "host/recapture_pass.h"
#include "host/recapture_plan.h"
#include "platform/movie_writer.h"
#include "platform/runtime.h"

namespace zq::host {

/// What a run needs, made by the command. All of it outlives the run.
struct RecaptureRunSetup {
  platform::Runtime& runtime;
  platform::Clock& wall;
  platform::CompressionPlatform& compression;
  platform::Settings& settings;
  platform::MovieWriterFactory& writers;
  Console& console;
  ClipFiles& files;
  std::shared_ptr<backend::TapeImage> tape;
  backend::DeckOptions deck;
  CatalogueTape catalogueTape;
  bool manual = false;
  platform::Duration lookEvery;
  std::function<bool()> interrupted;
  std::function<Status(const std::string& path, const std::function<void(const SharedBytes&)>& take)> readMovie;
  /// A clip was recaptured to this path.
  std::function<Status(const CatalogueClip& clip, const std::string& path)> recaptured;
  CompressedMovies compressed;
};

/// What became of a recapture.
struct RecaptureOutcome {
  std::vector<RecapturedClip> clips;
  std::vector<Error> alerts;
  /// How long the deck was busy, in its own time.
  double tapeSeconds = 0;
  bool interrupted = false;
  std::optional<Error> error;
};

class RecaptureRun {
 public:
  explicit RecaptureRun(const RecaptureRunSetup& setup);
  ~RecaptureRun();

  RecaptureOutcome run();
  /// Also after run().
  const platform::QTCaptureDevice& deck() const;

 private:
  struct Parts;
  platform::MovieWriterFactory& writers() const;
  RecapturePass::End runPass(const TapeValue& records, const std::vector<CatalogueClip>& wanted);
  /// Whether another pass may help.
  bool learnFrom(RecapturePass::End end, const RecapturePass& pass);
  void giveUp(const std::function<bool(const CatalogueClip&)>& which, const std::string& reason);
  double lengthOfTape() const;
  TapeWatch::Limits limitsFor(const std::vector<CatalogueClip>& wanted) const;

  // Constant after construction.
  const RecaptureRunSetup setup_;
  const RecapturePlan plan_;

  // Main thread only.
  std::unique_ptr<Parts> parts_;
  platform::TimePoint deadline_;
  bool goOn_ = true;
  RecaptureOutcome outcome_;
};

}  // namespace zq::host
