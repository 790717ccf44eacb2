#pragma once
// A file output of the session: tells its delegate of each frame, then writes it while it records.

#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "backends/session/frame_consumer.h"
#include "backends/session/movie_recorder.h"
#include "platform/capture_session.h"
#include "platform/recursive_lock.h"

namespace zq::backend {

/// Sees each frame on the delivery thread, after the delegate and before it is written; never without a delegate, so
/// that a delegate that takes itself out is not used any more from here either.
using FrameHook = std::function<void(platform::QTCaptureFileOutput& output, const platform::QTSampleBuffer& frame)>;

class MovieFileOutput : public platform::QTCaptureMovieFileOutput, public FrameConsumer {
 public:
  MovieFileOutput(platform::Runtime& runtime, platform::MovieWriterFactory& writers, Log& log,
                  RecorderObserver observer, FrameHook frameSeen, std::size_t queueFrames);

  /// Waits for a call of the old delegate that is under way on another thread.
  void setDelegate(platform::QTCaptureOutputDelegate* delegate) override;
  void recordToOutputFileURL(const std::optional<std::string>& path) override;
  std::optional<std::string> outputFileURL() const override;
  std::vector<platform::QTCaptureConnection> connections() const override;
  /// Holds for the files that are opened from then on. Pictures only: the sound goes with them.
  void setCompressionOptionsForConnection(std::shared_ptr<const platform::QTCompressionOptions> options,
                                          const platform::QTCaptureConnection& connection) override;
  void consume(const platform::QTSampleBuffer& frame, bool sourceCanWait) override;

  /// See MovieRecorder.
  void finish() { recorder_.finish(); }
  const MovieRecorder& recorder() const { return recorder_; }

 private:
  RecorderObserver withNotice(RecorderObserver observer);
  void tellFinished(const FinishedFile& file);
  bool fileCannotTake(const platform::QTSampleBuffer& frame) const;
  void tellDelegate(const platform::QTSampleBuffer& frame);
  void writeIfRecording(const platform::QTSampleBuffer& frame, bool sourceCanWait);
  void writePending();

  // Constant after construction.
  const FrameHook frameSeen_;
  const std::unique_ptr<platform::Mutex> mutex_;

  /// Goes with the output, so that the notice of a file that is still posted finds it gone.
  const std::shared_ptr<MovieFileOutput*> alive_ = std::make_shared<MovieFileOutput*>(this);

  // Set on the main thread under delegateLock_, which is held while the delegate is called for a frame.
  platform::RecursiveLock delegateLock_;
  std::atomic<platform::QTCaptureOutputDelegate*> delegate_ = nullptr;

  // Guarded by mutex_.
  std::shared_ptr<const platform::QTCompressionOptions> compression_;      // null for none
  std::shared_ptr<const platform::QTCompressionOptions> fileCompression_;  // of the open file and what carries it on
  std::optional<std::string> path_;
  std::size_t fileFrameSize_ = 0;  // of the frames in the open file; 0 before the first
  int continuations_ = 0;          // files that followed the open one under its own name
  /// The frame that the delegate has seen, and that still waits for its place in the file.
  std::optional<platform::QTSampleBuffer> pending_;
  bool pendingMayBeDropped_ = false;

  MovieRecorder recorder_;
};

/// The name of the file that carries `path` on when the tape changes system in mid clip: "name-part2.mov".
std::string continuationPath(const std::string& path, int part);

}  // namespace zq::backend
