#include "host/clip_ledger.h"

#include <algorithm>
#include <filesystem>
#include <mutex>
#include <system_error>

#include "backends/deck/frame_index.h"
#include "backends/session/movie_file_output.h"

namespace zq::host {
namespace {

namespace fs = std::filesystem;
using backend::continuationPath;

std::uintmax_t sizeOf(const std::string& path) {
  std::error_code failed;
  const std::uintmax_t size = fs::file_size(path, failed);
  return failed ? 0 : size;
}

bool exists(const std::string& path) {
  std::error_code failed;
  return fs::exists(path, failed);
}

/// Frames laid end to end, of one system or, in a clip that changes system, of both.
std::int64_t framesIn(const std::string& path, std::size_t frameBytes) {
  auto tape = backend::openTape(path);
  if (!tape.ok()) return frameBytes == 0 ? 0 : static_cast<std::int64_t>(sizeOf(path) / frameBytes);
  std::int64_t frames = 0;
  while (true) {
    const auto location = tape.value().index.locate(frames);
    if (!location.ok() || !location.value()) return frames;
    ++frames;
  }
}

/// Whether `path` is the movie at `movie` or one that carries it on.
bool belongsTo(const std::string& path, const std::string& movie) {
  const std::string part = continuationPath(movie, 2);
  const std::string stem = part.substr(0, part.rfind('2'));
  return path == movie || path.starts_with(stem);
}

}  // namespace

ClipLedger::ClipLedger(platform::Runtime& runtime, ClipFiles& files, Log& log)
    : files_(files), log_(log), mutex_(runtime.makeMutex("clip ledger")) {}

ClipPaths ClipLedger::open() {
  const std::lock_guard guard(*mutex_);
  const int number = static_cast<int>(entries_.size()) + 1;
  Entry entry;
  entry.working = files_.workingNames(number);
  entries_.push_back(entry);
  return {std::to_string(number), entry.working.movie, entry.working.thumbnails};
}

void ClipLedger::close(const ClipInfo& info) {
  const std::lock_guard guard(*mutex_);
  // A cut while the next clip still waits for its preroll closes the last one again; it has ended already.
  if (!entries_.empty() && !entries_.back().info) entries_.back().info = info;
}

void ClipLedger::countFrame(const FrameFacts& facts, std::size_t bytes) {
  const std::lock_guard guard(*mutex_);
  FrameFacts counted = facts;
  counted.frame = delivered_++;
  findings_.add(counted);
  if (entries_.empty() || entries_.back().info) return;
  Entry& entry = entries_.back();
  if (entry.tapeFrames++ == 0) {
    entry.frameBytes = bytes;
    entry.impossibleDate = facts.impossibleDate;
  }
}

void ClipLedger::movieFinished(const backend::FinishedFile& file) {
  const std::lock_guard guard(*mutex_);
  for (std::size_t i = entries_.size(); i-- > 0;) {
    if (!belongsTo(file.path, entries_[i].working.movie)) continue;
    entries_[i].files.push_back(file);
    return settleBefore(i);
  }
}

std::vector<CapturedClip> ClipLedger::settle() {
  const std::lock_guard guard(*mutex_);
  settleBefore(entries_.size());
  return clips_;
}

void ClipLedger::settleBefore(std::size_t end) {
  for (; settled_ < end; ++settled_) settleEntry(entries_[settled_]);
}

void ClipLedger::settleEntry(Entry& entry) {
  if (dropIfEmpty(entry)) return;
  const int number = static_cast<int>(clips_.size()) + 1;
  CapturedClip clip;
  if (entry.info) clip.info = *entry.info;
  clip.info.clipId = std::to_string(number);
  clip.system = systemOfFrameSize(entry.frameBytes);
  clip.impossibleDate = entry.impossibleDate;
  clip.tapeFrames = entry.tapeFrames;
  // What an unset clock wrote is no date to find a clip by.
  const std::string stem = files_.freeStem(entry.impossibleDate ? nullptr : clip.info.clipRecordingDate, number);
  for (const backend::FinishedFile& file : entry.files) {
    clip.movieFrames += file.frames;
    if (!exists(file.path)) continue;
    if (file.path == entry.working.movie) {
      clip.moviePath = moved(file.path, files_.moviePath(stem));
    } else {
      const int part = static_cast<int>(clip.movieContinuations.size()) + 2;
      clip.movieContinuations.push_back(moved(file.path, backend::continuationPath(files_.moviePath(stem), part)));
    }
  }
  if (exists(entry.working.thumbnails)) {
    clip.thumbnailFrames = framesIn(entry.working.thumbnails, entry.frameBytes);
    clip.thumbnailPath = moved(entry.working.thumbnails, files_.thumbnailsPath(stem));
  }
  clips_.push_back(std::move(clip));
}

bool ClipLedger::dropIfEmpty(const Entry& entry) {
  if (entry.tapeFrames > 0 || sizeOf(entry.working.thumbnails) > 0) return false;
  std::error_code ignored;
  fs::remove(entry.working.thumbnails, ignored);
  return true;
}

/// The name within the folder that the file has now.
std::string ClipLedger::moved(const std::string& from, const std::string& to) {
  const Status status = moveWithoutOverwriting(from, to);
  if (status.ok()) return ClipFiles::nameOf(to);
  log_.write(LogLevel::warning, status.error().text());
  return ClipFiles::nameOf(from);
}

std::int64_t ClipLedger::deliveredFrames() const {
  const std::lock_guard guard(*mutex_);
  return delivered_;
}

int ClipLedger::startedClips() const {
  const std::lock_guard guard(*mutex_);
  return static_cast<int>(std::ranges::count_if(entries_, [](const Entry& entry) { return entry.tapeFrames > 0; }));
}

TapeFindings ClipLedger::findings() const {
  const std::lock_guard guard(*mutex_);
  return findings_;
}

}  // namespace zq::host
