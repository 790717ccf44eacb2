#include "backends/media/container_writer.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <utility>

#include "backends/media/movie_text.h"
#include "backends/media/picture_shape.h"

namespace zq::media {
namespace {

using platform::QTSampleBuffer;

// A movie's tracks are laid down in its head, so its first frame with sound must be known before the head is written. A
// damaged or blank frame at the start of a clip is common; two seconds of them are a tape without sound. Waiting costs
// no copies, just that this many frames stay in memory.
constexpr std::size_t kMostHeldFrames = 60;
// A track of silence is what every player and editor takes; 48 kHz is what sound that comes later most likely has.
constexpr MovieSoundFormat kSoundOfSilentTape{48000, 1};
// No format has as many as 2000 stereo samples in a frame, of 4 bytes each.
constexpr std::int64_t kMostSoundBytesPerFrame = 8000;
constexpr std::int64_t kMostSoundTracks = 2;
// More than any format's index takes for the packets of one frame.
constexpr std::int64_t kIndexBytesPerFrame = 256;

}  // namespace

ContainerWriter::ContainerWriter(std::unique_ptr<OutputFile> file, const std::string& formatName,
                                 const MakeTracks& makeTracks, Log* log)
    : file_(std::move(file)), muxer_(*file_, formatName), tracks_(makeTracks(file_->path(), muxer_)), log_(log) {}

Status ContainerWriter::append(const QTSampleBuffer& frame) {
  if (broken_) return *broken_;
  const std::optional<DVSystem> system = systemOfFrameSize(frame.lengthForAllSamples());
  if (!system || (system_ && system_ != system)) return wrongFrameSize(file_->path(), frame.lengthForAllSamples());
  system_ = system;
  if (sound_) return writeFrame(frame);

  if (Status room = reserveForHeldAnd(frame); !room.ok()) {
    if (held_.empty()) broken_ = room.error();
    return room;
  }
  held_.push_back(frame);
  const std::optional<MovieSoundFormat> format = MovieSound::formatOf(frame.bytesForAllSamples.bytes());
  if (!format && held_.size() < kMostHeldFrames) return {};
  Status started = start(format.value_or(kSoundOfSilentTape));
  return started.ok() ? writeHeldFrames() : started;
}

/// A frame that is held counts as written, so its room is taken at once.
Status ContainerWriter::reserveForHeldAnd(const QTSampleBuffer& frame) {
  const auto frames = static_cast<std::int64_t>(held_.size()) + 1;
  const auto size = static_cast<std::int64_t>(frame.lengthForAllSamples());
  const std::int64_t soundSize = kMostSoundTracks * kMostSoundBytesPerFrame;
  return file_->reserve(frames * (size + soundSize + kIndexBytesPerFrame) + muxer_.indexSize());
}

Status ContainerWriter::finish() {
  if (!sound_ && !held_.empty() && !broken_) {
    Status result = start(kSoundOfSilentTape);
    if (result.ok()) result = writeHeldFrames();
    if (!result.ok() && !broken_) broken_ = result.error();
  }
  if (framesWritten_ == 0) {
    Status removed = file_->remove();
    return broken_ ? Status(*broken_) : removed;
  }
  return complete();
}

/// The index whatever happened before: it is what makes the frames a movie.
Status ContainerWriter::complete() {
  Status drained = tracks_->finish();
  Status finished = muxer_.finish();
  Status closed = file_->close();
  if (broken_) return *broken_;
  if (!drained.ok()) return drained;
  return finished.ok() ? closed : finished;
}

/// As the first frames say it. Only a timecode must be that of the very first, to be right for all that follow.
MovieFormat ContainerWriter::formatFor(MovieSoundFormat sound) const {
  MovieFormat format;
  format.system = *system_;
  format.wideScreen = std::ranges::any_of(
      held_, [](const QTSampleBuffer& frame) { return isWideScreen(frame.bytesForAllSamples.bytes()); });
  format.soundRate = sound.rate;
  format.soundTracks = sound.tracks;
  format.timecode = movieTimecode(held_.front(), *system_);
  for (const QTSampleBuffer& frame : held_) {
    if (!format.recordingDate) format.recordingDate = movieDate(frame.bytesForAllSamples);
  }
  return format;
}

Status ContainerWriter::start(MovieSoundFormat sound) {
  Status started = file_->reserve(muxer_.indexSize());
  if (started.ok()) started = tracks_->start(formatFor(sound));
  if (!started.ok()) {
    broken_ = started.error();
    return started;
  }
  soundFormat_ = sound;
  sound_.emplace(*system_, sound);
  return {};
}

Status ContainerWriter::writeHeldFrames() {
  const std::vector<QTSampleBuffer> held = std::exchange(held_, {});
  for (const QTSampleBuffer& frame : held) {
    Status written = writeFrame(frame);
    if (!written.ok()) return written;
  }
  return {};
}

Status ContainerWriter::writeFrame(const QTSampleBuffer& frame) {
  const std::int64_t size = tracks_->sizeWithNext(frame.lengthForAllSamples());
  const std::int64_t soundSize = soundFormat_.tracks * kMostSoundBytesPerFrame;
  // Nothing of a frame that does not fit has reached the tracks, whose index would name it.
  Status result = file_->reserve(size + soundSize + muxer_.indexSize());
  if (!result.ok()) return result;
  // The sound is read first: that touches the whole frame, and the write of one that is not in memory yet then finds it
  // there instead of stumbling over each of its pages.
  reportSound(sound_->take(frame.bytesForAllSamples.bytes()));
  result = tracks_->write(frame.bytesForAllSamples.bytes(), *sound_);
  if (!result.ok()) broken_ = result.error();
  if (result.ok()) ++framesWritten_;
  return result;
}

void ContainerWriter::reportSound(MovieSound::Source source) {
  if (source != MovieSound::Source::otherFormat || soundReported_ || !log_) return;
  soundReported_ = true;
  log_->write(
      LogLevel::warning,
      fmt::format("\"{}\", frame {}: the sound changes from {} Hz, {} stereo track(s), which a movie cannot do; "
                  "what does not fit is silent in it.{}",
                  file_->path(), framesWritten_, soundFormat_.rate, soundFormat_.tracks,
                  tracks_->keepReceived() ? " The DV picture track still has all of it." : ""));
}

}  // namespace zq::media
