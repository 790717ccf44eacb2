#pragma once
// The writer thread of a file output: a bounded queue of frames and file changes, written in order.

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "base/log.h"
#include "platform/movie_writer.h"
#include "platform/runtime.h"
#include "platform/sample_buffer.h"

namespace zq::backend {

/// A file that is complete on disk, trailer included.
struct FinishedFile {
  std::string path;
  std::int64_t frames = 0;   // in the file
  std::int64_t dropped = 0;  // left out: the disk was too slow, or had failed
  std::optional<Error> error;
};

/// Called on the main thread.
struct RecorderObserver {
  std::function<void(const FinishedFile&)> finished;
  /// The file cannot take more; finished() follows when it is closed.
  std::function<void(const std::string& path, const Error&)> failed;
};

class MovieRecorder {
 public:
  /// How far a source that can wait gets ahead: enough to read while another batch is written, and little enough for
  /// the frames to be in the processor's cache still.
  static constexpr std::size_t kFramesAhead = 24;

  /// Holds `queueFrames` frames at most, those that are being written among them.
  MovieRecorder(platform::Runtime& runtime, platform::MovieWriterFactory& writers, Log& log, RecorderObserver observer,
                std::size_t queueFrames);
  ~MovieRecorder() { finish(); }

  /// Writes what is queued, completes the open file and ends the thread. What is pushed later is lost.
  void finish();

  // From any thread.
  /// What is pushed from now on goes to this file; as received without `compression`.
  void open(const std::string& path, std::shared_ptr<const platform::QTCompressionOptions> compression = nullptr);
  void close();
  /// Returns when push() will not drop the next frame of the calling thread, the only one that pushes.
  void waitForSpace();
  /// Queues one frame, and never waits. When the queue is full, a frame that `mayBeDropped` is, which is counted and
  /// logged; one that may not goes beyond the bound.
  void push(const platform::QTSampleBuffer& frame, bool mayBeDropped = true);
  std::int64_t recordedFrames() const;
  std::int64_t droppedFrames() const;
  /// How many frames wait or are being written; not more than capacity(), but for those that may not be dropped.
  std::size_t heldFrames() const;
  std::size_t capacity() const { return queueFrames_; }

 private:
  /// A frame, or a change of file: `open` with a path, or a close.
  struct Item {
    enum class Kind { frame, open, close } kind;
    platform::QTSampleBuffer frame;
    std::string path;
    std::shared_ptr<const platform::QTCompressionOptions> compression;
    std::int64_t droppedBefore = 0;  // frames of the file that the change ends
  };

  void queueChange(Item item);
  void run();
  bool takeBatch(std::vector<Item>& batch);
  std::int64_t takeDropped();
  void write(std::span<const Item> items);
  void changeFile(const Item& item);
  void startFile(const Item& item);
  std::size_t appendFrames(std::span<const Item> items);
  void finishFile(std::int64_t droppedFromQueue);
  void fail(const Error& error);

  // Constant after construction.
  platform::Runtime& runtime_;
  platform::MovieWriterFactory& writers_;
  Log& log_;
  const RecorderObserver observer_;
  const std::size_t queueFrames_;
  const std::size_t batchItems_;
  const std::unique_ptr<platform::Mutex> mutex_;
  const std::unique_ptr<platform::Condition> workArrived_;
  const std::unique_ptr<platform::Condition> spaceArrived_;

  // Guarded by mutex_.
  std::deque<Item> queue_;
  std::size_t heldFrames_ = 0;  // in the queue or being written
  bool urgent_ = false;
  bool quit_ = false;
  std::int64_t recorded_ = 0;
  std::int64_t dropped_ = 0;
  std::int64_t droppedSinceChange_ = 0;  // since the last change of file was queued
  bool compresses_ = false;              // in the file that was opened last

  // Writer thread only.
  std::unique_ptr<platform::MovieWriter> writer_;
  std::optional<FinishedFile> file_;

  std::unique_ptr<platform::Thread> thread_;
};

}  // namespace zq::backend
