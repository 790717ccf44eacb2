#include "backends/session/movie_file_output.h"

#include <filesystem>
#include <mutex>
#include <utility>

namespace zq::backend {

using platform::QTCaptureConnection;
using platform::QTSampleBuffer;

std::string continuationPath(const std::string& path, int part) {
  std::filesystem::path name(path);
  const std::string extension = name.extension().string();
  name.replace_extension();
  return name.string() + "-part" + std::to_string(part) + extension;
}

MovieFileOutput::MovieFileOutput(platform::Runtime& runtime, platform::MovieWriterFactory& writers, Log& log,
                                 RecorderObserver observer, FrameHook frameSeen, std::size_t queueFrames)
    : frameSeen_(std::move(frameSeen)),
      mutex_(runtime.makeMutex("file output")),
      delegateLock_(runtime, "file output delegate"),
      recorder_(runtime, writers, log, withNotice(std::move(observer)), queueFrames) {}

// The delegate hears of a finished file before the host, which may move it.
RecorderObserver MovieFileOutput::withNotice(RecorderObserver observer) {
  observer.finished = [this, alive = std::weak_ptr(alive_), host = observer.finished](const FinishedFile& file) {
    if (!alive.expired()) tellFinished(file);
    if (host) host(file);
  };
  return observer;
}

// Not under delegateLock_, which a frame may hold for seconds: here as there the main thread sets the delegate.
void MovieFileOutput::tellFinished(const FinishedFile& file) {
  platform::QTCaptureOutputDelegate* delegate = delegate_;
  if (delegate == nullptr) return;
  delegate->captureOutputDidFinishRecordingToOutputFileAtURLForConnectionsDueToError(*this, file.path, connections(),
                                                                                     file.error);
}

void MovieFileOutput::setDelegate(platform::QTCaptureOutputDelegate* delegate) {
  const std::lock_guard guard(delegateLock_);
  delegate_ = delegate;
}

void MovieFileOutput::recordToOutputFileURL(const std::optional<std::string>& path) {
  const std::lock_guard guard(*mutex_);
  if (path == path_) return;
  writePending();
  if (path_) recorder_.close();
  path_ = path;
  fileFrameSize_ = 0;
  continuations_ = 0;
  fileCompression_ = compression_;
  if (path_) recorder_.open(*path_, fileCompression_);
}

std::optional<std::string> MovieFileOutput::outputFileURL() const {
  const std::lock_guard guard(*mutex_);
  return path_;
}

std::vector<QTCaptureConnection> MovieFileOutput::connections() const {
  return {{platform::QTMediaTypeVideo}, {platform::QTMediaTypeSound}};
}

void MovieFileOutput::setCompressionOptionsForConnection(std::shared_ptr<const platform::QTCompressionOptions> options,
                                                         const QTCaptureConnection& connection) {
  if (connection.mediaType != platform::QTMediaTypeVideo) return;
  const std::lock_guard guard(*mutex_);
  compression_ = std::move(options);
}

void MovieFileOutput::consume(const QTSampleBuffer& frame, bool sourceCanWait) {
  tellDelegate(frame);
  writeIfRecording(frame, sourceCanWait);
}

bool MovieFileOutput::fileCannotTake(const QTSampleBuffer& frame) const {
  const std::lock_guard guard(*mutex_);
  return path_ && fileFrameSize_ != 0 && fileFrameSize_ != frame.lengthForAllSamples();
}

void MovieFileOutput::tellDelegate(const QTSampleBuffer& frame) {
  const std::lock_guard guard(delegateLock_);
  if (delegate_ == nullptr) return;
  if (fileCannotTake(frame)) {
    delegate_.load()->captureOutputMustChangeOutputFileAtURLForConnectionsDueToError(
        *this, outputFileURL().value_or(""), connections(), {"The signal system of the tape changes", ""});
  }
  if (delegate_ == nullptr) return;
  delegate_.load()->captureOutputDidOutputSampleBufferFromConnection(*this, frame, {platform::QTMediaTypeVideo});
  if (frameSeen_ && delegate_ != nullptr) frameSeen_(*this, frame);
}

// The delegate has seen the frame, so it belongs to the file that is open now, also when the file is changed while the
// frame waits for its place in the queue. The wait is without the mutex, so that whoever changes the file does not wait
// for the disk.
void MovieFileOutput::writeIfRecording(const QTSampleBuffer& frame, bool sourceCanWait) {
  {
    const std::lock_guard guard(*mutex_);
    if (!path_) return;
    pending_ = frame;
    pendingMayBeDropped_ = !sourceCanWait;
  }
  if (sourceCanWait) recorder_.waitForSpace();
  const std::lock_guard guard(*mutex_);
  writePending();
}

// A file holds frames of one system. When nobody asked for another file by now, the clip goes on in one beside it, so
// that nothing of the tape is left out.
void MovieFileOutput::writePending() {
  if (!pending_) return;
  const std::size_t frameSize = pending_->lengthForAllSamples();
  if (fileFrameSize_ != 0 && fileFrameSize_ != frameSize) {
    ++continuations_;
    recorder_.close();
    recorder_.open(continuationPath(*path_, continuations_ + 1), fileCompression_);
  }
  fileFrameSize_ = frameSize;
  recorder_.push(*pending_, pendingMayBeDropped_);
  pending_.reset();
}

}  // namespace zq::backend
