#include "backends/session/movie_recorder.h"

#include <fmt/format.h>

#include <algorithm>
#include <mutex>
#include <utility>

#include "timecode/timecode_text.h"

namespace zq::backend {

using platform::QTSampleBuffer;

namespace {

// The writer is woken for this many frames at a time: waking it for each costs more than writing one.
constexpr std::size_t kBatchItems = 8;

}  // namespace

MovieRecorder::MovieRecorder(platform::Runtime& runtime, platform::MovieWriterFactory& writers, Log& log,
                             RecorderObserver observer, std::size_t queueFrames)
    : runtime_(runtime),
      writers_(writers),
      log_(log),
      observer_(std::move(observer)),
      queueFrames_(std::max<std::size_t>(1, queueFrames)),
      batchItems_(std::clamp<std::size_t>(queueFrames_ / 2, 1, kBatchItems)),
      mutex_(runtime.makeMutex("movie queue")),
      workArrived_(runtime.makeCondition("movie queue: frames to write")),
      spaceArrived_(runtime.makeCondition("movie queue: space for a frame")) {
  thread_ = runtime.startThread("movie writer", [this] { run(); });
}

void MovieRecorder::finish() {
  if (!thread_) return;
  {
    const std::lock_guard guard(*mutex_);
    quit_ = true;
    workArrived_->notifyAll();
  }
  thread_->join();
  thread_.reset();
}

void MovieRecorder::open(const std::string& path, std::shared_ptr<const platform::QTCompressionOptions> compression) {
  queueChange({Item::Kind::open, {}, path, std::move(compression), 0});
}

void MovieRecorder::close() {
  queueChange({Item::Kind::close, {}, {}, nullptr, 0});
}

// Changes of file are never dropped, and they are done at once: somebody waits for the file that they end.
void MovieRecorder::queueChange(Item item) {
  const std::lock_guard guard(*mutex_);
  item.droppedBefore = std::exchange(droppedSinceChange_, 0);
  compresses_ = item.compression != nullptr;
  queue_.push_back(std::move(item));
  urgent_ = true;
  workArrived_->notifyAll();
}

void MovieRecorder::waitForSpace() {
  const std::lock_guard guard(*mutex_);
  while (!quit_ && heldFrames_ >= std::min(queueFrames_, kFramesAhead)) {
    runtime_.waitForWorkAside(*spaceArrived_, *mutex_);
  }
}

void MovieRecorder::push(const QTSampleBuffer& frame, bool mayBeDropped) {
  const std::lock_guard guard(*mutex_);
  if (mayBeDropped && heldFrames_ >= queueFrames_) {
    ++dropped_;
    ++droppedSinceChange_;
    log_.write(LogLevel::warning,
               fmt::format("Frame {} dropped: the {} does not keep up",
                           frame.smpteTime ? timecodeText(*frame.smpteTime) : std::string("without a timecode"),
                           compresses_ ? "compression" : "disk"));
    return;
  }
  ++heldFrames_;
  queue_.push_back({Item::Kind::frame, frame, {}, nullptr, 0});
  if (queue_.size() >= batchItems_) workArrived_->notifyAll();
}

std::int64_t MovieRecorder::recordedFrames() const {
  const std::lock_guard guard(*mutex_);
  return recorded_;
}

std::int64_t MovieRecorder::droppedFrames() const {
  const std::lock_guard guard(*mutex_);
  return dropped_;
}

std::size_t MovieRecorder::heldFrames() const {
  const std::lock_guard guard(*mutex_);
  return heldFrames_;
}

void MovieRecorder::run() {
  std::vector<Item> batch;
  while (takeBatch(batch)) {
    write(batch);
  }
  finishFile(takeDropped());
}

std::int64_t MovieRecorder::takeDropped() {
  const std::lock_guard guard(*mutex_);
  return std::exchange(droppedSinceChange_, 0);
}

// Replaces the batch that has been written, whose frames are held no more, by the next one.
bool MovieRecorder::takeBatch(std::vector<Item>& batch) {
  const auto written =
      std::count_if(batch.begin(), batch.end(), [](const Item& i) { return i.kind == Item::Kind::frame; });
  batch.clear();
  const std::lock_guard guard(*mutex_);
  heldFrames_ -= static_cast<std::size_t>(written);
  spaceArrived_->notifyAll();
  while (!quit_ && !urgent_ && queue_.size() < batchItems_) workArrived_->wait(*mutex_);
  const std::size_t count = std::min(queue_.size(), batchItems_);
  for (std::size_t i = 0; i < count; ++i) {
    batch.push_back(std::move(queue_.front()));
    queue_.pop_front();
  }
  if (queue_.empty()) urgent_ = false;
  return !batch.empty();
}

void MovieRecorder::write(std::span<const Item> items) {
  while (!items.empty()) {
    if (items.front().kind == Item::Kind::frame) {
      items = items.subspan(appendFrames(items));
    } else {
      changeFile(items.front());
      items = items.subspan(1);
    }
  }
}

void MovieRecorder::changeFile(const Item& item) {
  finishFile(item.droppedBefore);
  if (item.kind == Item::Kind::open) startFile(item);
}

void MovieRecorder::startFile(const Item& item) {
  file_ = FinishedFile{item.path, 0, 0, std::nullopt};
  auto writer = writers_.create(item.path, item.compression);
  if (writer.ok()) {
    writer_ = std::move(writer.value());
  } else {
    fail(writer.error());
  }
}

/// Writes the frames that the items begin with, and returns how many these are.
std::size_t MovieRecorder::appendFrames(std::span<const Item> items) {
  const auto change = std::ranges::find_if(items, [](const Item& item) { return item.kind != Item::Kind::frame; });
  const auto count = static_cast<std::size_t>(change - items.begin());
  if (!file_) return count;
  std::size_t written = 0;
  std::optional<Error> error = file_->error;
  if (!error) {
    runtime_.runAside([&] {
      for (; written < count && !error; ++written) {
        if (Status status = writer_->append(items[written].frame); !status.ok()) error = status.error();
      }
    });
    if (error) --written;
    if (error) fail(*error);
  }
  const std::lock_guard guard(*mutex_);
  file_->frames += static_cast<std::int64_t>(written);
  recorded_ += static_cast<std::int64_t>(written);
  file_->dropped += static_cast<std::int64_t>(count - written);
  dropped_ += static_cast<std::int64_t>(count - written);
  return count;
}

void MovieRecorder::fail(const Error& error) {
  file_->error = error;
  log_.write(observer_.failed ? LogLevel::info : LogLevel::error, error.text());
  if (observer_.failed) {
    runtime_.mainLoop().post([failed = observer_.failed, path = file_->path, error] { failed(path, error); });
  }
}

void MovieRecorder::finishFile(std::int64_t droppedFromQueue) {
  if (!file_) return;
  if (writer_) {
    Status status = writer_->finish();
    if (!status.ok() && !file_->error) fail(status.error());
    writer_.reset();
  }
  file_->dropped += droppedFromQueue;
  if (observer_.finished) {
    runtime_.mainLoop().post([finished = observer_.finished, file = *file_] { finished(file); });
  }
  file_.reset();
}

}  // namespace zq::backend
