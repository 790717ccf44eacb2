#pragma once
// One session of the recapture controller over some of the clips: from its start to the alert that ends it, or to the
// moment when its host gives a clip up.

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "backends/session/session_platform.h"
#include "host/alert_list.h"
#include "host/compressed_movies.h"
#include "host/console.h"
#include "host/deciding_output_first.h"
#include "host/note_log.h"
#include "host/progress_line.h"
#include "host/recapture_ledger.h"
#include "host/tape_watch.h"
#include "platform/notification_center.h"
#include "recapture/controller.h"

namespace zq::host {

/// What a pass needs. All of it outlives the pass.
struct RecapturePassSetup {
  platform::Runtime& runtime;
  platform::CompressionPlatform& compression;
  platform::Settings& settings;
  platform::MovieWriterFactory& writers;
  platform::NotificationCenter& notifications;
  platform::FileManager& files;
  const platform::Strings& strings;
  AlertList& alerts;
  Console& console;
  RecaptureLedger& ledger;
  ProgressLine& progress;
  std::shared_ptr<platform::QTCaptureDevice> device;
  TapeValue tape;
  bool manual = false;
  TapeWatch::Limits limits;
  platform::Duration lookEvery;
  std::function<bool()> interrupted;
  /// When the whole recapture has to be over.
  platform::TimePoint deadline;
  CompressedMovies compressed;
};

class RecapturePass {
 public:
  explicit RecapturePass(const RecapturePassSetup& setup);
  ~RecapturePass();

  enum class End {
    /// The controller said so.
    ended,
    gaveUpClip,
    gaveUpAtEnd,
    gaveUpAtBeginning,
    gaveUpUndated,
    interrupted,
    overdue,
    error,
  };
  /// The deck stands and all files are complete when it returns.
  End run();

  /// After run(): the clip that was looked for, "" for none; where the tape was; what went wrong.
  const std::string& clipLookedFor() const { return clipLookedFor_; }
  const DateValue& lastDate() const { return lastDate_; }
  const std::optional<Error>& error() const { return error_; }

 private:
  ZQACRecaptureControllerDelegate makeDelegate();
  void frameSeen(const platform::QTCaptureFileOutput& output, const platform::QTSampleBuffer& frame);
  void start();
  platform::CapturePlatform& capturePlatform() const;
  void chooseCompression();
  void look();
  void obey(TapeAdvice advice);
  TapeWatch::Session session() const;
  std::optional<QueueProgress> queue() const;
  void end(End end);
  void cancel();
  void takeDown();

  // Constant after construction.
  const RecapturePassSetup setup_;
  NoteLog note_;
  const ZQACRecaptureControllerDelegate delegate_;

  std::atomic<std::int64_t> frames_ = 0;
  // Set before the first frame; frames come only while the controller lives.
  ZQACRecaptureController* watchedController_ = nullptr;
  std::atomic<const platform::QTCaptureFileOutput*> movieOutput_ = nullptr;

  // Delivery thread only: whose start timecode came by in another scene, while this frame is delivered.
  ZQACRecaptureController* cameToAnotherStart_ = nullptr;

  // Main thread only.
  std::unique_ptr<backend::SessionPlatform> platform_;
  std::unique_ptr<DecidingOutputFirst> orderedPlatform_;
  std::unique_ptr<ZQACRecaptureController> controller_;
  TapeWatch watch_;
  platform::Observation transportObservation_;
  std::shared_ptr<platform::Timer> lookTimer_;
  std::optional<End> end_;
  std::string clipLookedFor_;
  DateValue lastDate_;
  std::optional<Error> error_;
};

}  // namespace zq::host
