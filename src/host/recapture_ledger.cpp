#include "host/recapture_ledger.h"

#include <algorithm>
#include <filesystem>
#include <mutex>
#include <system_error>
#include <utility>

#include "dv/frame_timecode.h"
#include "host/movie_check.h"
#include "host/text.h"

namespace zq::host {
namespace {

namespace fs = std::filesystem;

bool isThere(const fs::path& path) {
  std::error_code failed;
  return fs::symlink_status(path, failed).type() != fs::file_type::not_found;
}

}  // namespace

RecaptureLedger::RecaptureLedger(Services services, ClipFiles& files, std::vector<CatalogueClip> clips)
    : services_(std::move(services)), files_(files), mutex_(services_.runtime.makeMutex("recapture ledger")) {
  for (CatalogueClip& clip : clips) clips_.push_back({std::move(clip), {}, {}, {}, {}, 0});
}

// Nothing is written over, so aliases that are there already send the new ones into a folder of their own.
Expected<std::string> RecaptureLedger::makeAliasFolder() {
  const auto isFree = [&](const fs::path& folder) {
    return std::ranges::none_of(clips_, [&](const auto& entry) { return isThere(folder / aliasName(entry.clip)); });
  };
  aliasFolder_ = files_.folder();
  for (int counter = 2; !isFree(aliasFolder_); ++counter) {
    aliasFolder_ = files_.inFolder("aliases-" + std::to_string(counter));
  }
  std::error_code failed;
  fs::create_directories(aliasFolder_, failed);
  if (failed) return Error{"Cannot make the folder " + aliasFolder_, failed.message()};
  return aliasFolder_;
}

std::string RecaptureLedger::open(const std::string& clipId) {
  const std::lock_guard guard(*mutex_);
  const auto found = std::ranges::find_if(
      clips_, [&](const RecapturedClip& entry) { return std::to_string(entry.clip.id) == clipId; });
  const std::string path = files_.workingNames(static_cast<int>(working_.size()) + 1).movie;
  working_.push_back({path, static_cast<std::size_t>(found - clips_.begin()), false});
  return path;
}

int RecaptureLedger::closedClips() const {
  const std::lock_guard guard(*mutex_);
  return static_cast<int>(std::ranges::count_if(working_, &Working::closed));
}

void RecaptureLedger::close() {
  const std::lock_guard guard(*mutex_);
  if (!working_.empty()) working_.back().closed = true;
}

void RecaptureLedger::cancel() {
  const std::lock_guard guard(*mutex_);
  cancelled_ = true;
}

void RecaptureLedger::movieFinished(const backend::FinishedFile& file) {
  Working working;
  bool isPartial = false;
  {
    const std::lock_guard guard(*mutex_);
    const auto found = std::ranges::find(working_, file.path, &Working::path);
    // What follows a change of the tape's system in mid clip stays where it is; the check finds the clip too short.
    if (found == working_.end()) return;
    found->finished = true;
    working = *found;
    isPartial = cancelled_ && !working.closed;
  }
  std::error_code ignored;
  if (isPartial) fs::remove(file.path, ignored);
  if (working.clip >= clips_.size() || !isThere(file.path)) return;
  RecapturedClip& entry = clips_[working.clip];
  const std::string verdict = verdictOn(entry, file);
  if (entry.status != RecapturedClip::Status::recaptured) entry.movieFrames = file.frames;
  if (verdict.empty() && entry.status != RecapturedClip::Status::recaptured) {
    keep(entry, file.path);
  } else {
    setAside(entry, file.path, verdict);
  }
}

std::string RecaptureLedger::verdictOn(const RecapturedClip& entry, const backend::FinishedFile& file) const {
  if (file.error) return file.error->text();
  const bool compressed = services_.compressed.areCompressed();
  if (file.dropped > 0) {
    return counted(file.dropped, "frame") +
           " were lost: " + (compressed ? "compression does not keep up with the tape" : "the disk does not keep up");
  }
  MovieCheck check(entry.clip);
  const std::string unread = compressed ? hearWitness(file.path, check) : readBack(file.path, check);
  if (!unread.empty()) return unread;
  if (check.frames() != file.frames) return "it does not hold the frames that were written";
  const std::string verdict = check.verdict();
  return verdict.empty() ? verdictOnLength(entry, check.frames()) : verdict;
}

std::string RecaptureLedger::readBack(const std::string& path, MovieCheck& check) const {
  const Status read = services_.readMovie(path, [&](const SharedBytes& frame) { check.add(frame); });
  return read.ok() ? "" : read.error().text();
}

// What the frames of a compressed movie said of themselves is known from when they were written; that they are all
// there, from the file.
std::string RecaptureLedger::hearWitness(const std::string& path, MovieCheck& check) const {
  const CompressedMovies& compressed = services_.compressed;
  for (const FrameNote& frame : compressed.witness->takeFramesOf(path)) check.add(frame);
  const auto pictures = compressed.countPictures(path);
  if (!pictures.ok()) return pictures.error().text();
  const std::int64_t expected = check.frames() * compressed.picturesPerFrame;
  const bool isRight =
      compressed.picturesPerFrame > 0 ? pictures.value() == expected : pictures.value() > 0 || check.frames() == 0;
  if (isRight) return "";
  return "it has " + counted(pictures.value(), "picture") + " of " + counted(check.frames(), "frame");
}

// Where a timecode starts again within a clip, its end timecode comes by before the clip has ended. Only the movie that
// was captured can tell that; what it has behind the end may also be blank tape, which bears no timecodes.
std::string RecaptureLedger::verdictOnLength(const RecapturedClip& entry, std::int64_t frames) const {
  if (frames >= entry.clip.movieFrames - 1 || entry.clip.moviePath.empty()) return "";
  std::int64_t index = 0;
  std::int64_t behindTheEnd = 0;
  const Status read = services_.readMovie(entry.clip.moviePath, [&](const SharedBytes& frame) {
    if (index++ > frames && firstTimecode(frame)) ++behindTheEnd;
  });
  if (!read.ok() || behindTheEnd <= entry.clip.timebase) return "";
  return "it ends where the clip's end timecode comes by for the first time, and " + counted(behindTheEnd, "frame") +
         " of the captured movie follow";
}

void RecaptureLedger::keep(RecapturedClip& entry, const std::string& path) {
  const std::string named =
      files_.moviePath(files_.freeStem(entry.clip.recordingDate, static_cast<int>(entry.clip.id)));
  if (Status moved = moveWithoutOverwriting(path, named); !moved.ok()) {
    entry.moviePath = ClipFiles::nameOf(path);
    return fail(entry.clip.id, moved.error().text());
  }
  entry.moviePath = ClipFiles::nameOf(named);
  entry.status = RecapturedClip::Status::recaptured;
  entry.reason.clear();
  leaveAlias(entry, named);
  std::error_code failed;
  if (Status stored = services_.recaptured(entry.clip, fs::absolute(named, failed).string()); !stored.ok()) {
    entry.reason = stored.error().text();
    services_.log.write(LogLevel::error,
                        "The movie " + named + " is right, but the catalogue was not told: " + stored.error().text());
  }
}

// Movies as received are found under one name whatever the container; players go by the extension of the others.
std::string RecaptureLedger::aliasName(const CatalogueClip& clip) const {
  return std::to_string(clip.id) + "." + (services_.compressed.areCompressed() ? files_.extension() : "mov");
}

void RecaptureLedger::leaveAlias(RecapturedClip& entry, const std::string& movie) const {
  const fs::path path = fs::path(aliasFolder_) / aliasName(entry.clip);
  const auto alias = services_.aliases.aliasWithPath(movie);
  const Status left = alias ? alias->writeToFile(path.string()) : Status(Error{"There is no movie " + movie, ""});
  if (!left.ok()) return services_.log.write(LogLevel::warning, left.error().text());
  entry.recapturePath = path.lexically_relative(files_.folder()).string();
}

void RecaptureLedger::setAside(RecapturedClip& entry, const std::string& path, const std::string& verdict) {
  const std::string stem = files_.freeStem(entry.clip.recordingDate, static_cast<int>(entry.clip.id), ".wrong");
  const std::string named = files_.moviePath(stem);
  const bool moved = moveWithoutOverwriting(path, named).ok();
  if (entry.status == RecapturedClip::Status::recaptured) return;
  entry.moviePath = ClipFiles::nameOf(moved ? named : path);
  fail(entry.clip.id, "The movie is not right: " + verdict + (verdict.ends_with('.') ? "" : "."));
}

void RecaptureLedger::fail(std::int64_t clip, const std::string& reason) {
  RecapturedClip* entry = find(clip);
  if (entry == nullptr || entry->status == RecapturedClip::Status::recaptured) return;
  entry->status = RecapturedClip::Status::failed;
  if (entry->reason.empty()) entry->reason = reason;
}

void RecaptureLedger::settle(RecapturedClip::Status status, const std::string& reason) {
  for (RecapturedClip& entry : clips_) {
    if (entry.status != RecapturedClip::Status::waiting) continue;
    entry.status = status;
    entry.reason = reason;
  }
}

std::vector<CatalogueClip> RecaptureLedger::waiting() const {
  std::vector<CatalogueClip> clips;
  for (const RecapturedClip& entry : clips_) {
    if (entry.status == RecapturedClip::Status::waiting) clips.push_back(entry.clip);
  }
  return clips;
}

int RecaptureLedger::recapturedClips() const {
  return static_cast<int>(std::ranges::count(clips_, RecapturedClip::Status::recaptured, &RecapturedClip::status));
}

RecapturedClip* RecaptureLedger::find(std::int64_t clip) {
  const auto found = std::ranges::find_if(clips_, [&](const auto& entry) { return entry.clip.id == clip; });
  return found == clips_.end() ? nullptr : &*found;
}

}  // namespace zq::host
