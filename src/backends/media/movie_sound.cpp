#include "backends/media/movie_sound.h"

#include <cstddef>

namespace zq::media {
namespace {

int recordedTracks(const SoundFormat& format) {
  return format.pairs == 2 && format.recorded[1] ? 2 : 1;
}

}  // namespace

std::optional<MovieSoundFormat> MovieSound::formatOf(std::span<const std::uint8_t> frame) {
  const std::optional<SoundFormat> format = soundFormatOf(frame);
  if (!format) return std::nullopt;
  return MovieSoundFormat{format->sampleRate, recordedTracks(*format)};
}

MovieSound::MovieSound(DVSystem system, MovieSoundFormat format) : frameRate_(frameRateOf(system)), format_(format) {}

MovieSound::Source MovieSound::take(std::span<const std::uint8_t> frame) {
  const bool readable = readFrameSound(frame, sound_);
  const bool rightRate = readable && sound_.format.sampleRate == format_.rate;
  silence(rightRate ? sound_.samples : nominalSamples());
  ++framesTaken_;
  if (!readable) return Source::nothing;
  if (!rightRate) return Source::otherFormat;
  for (std::size_t i = 0; i < tracks_.size(); ++i) {
    if (!sound_.pairs[i].empty()) tracks_[i] = sound_.pairs[i];
  }
  return recordedTracks(sound_.format) > format_.tracks ? Source::otherFormat : Source::frame;
}

std::span<const std::int16_t> MovieSound::track(int index) const {
  return tracks_[static_cast<std::size_t>(index)];
}

/// From where the picture starts to where it ends, both counted from the start of the movie, so that rounding never
/// adds up.
int MovieSound::nominalSamples() const {
  const auto samplesUpTo = [this](std::int64_t frame) {
    return frame * format_.rate * frameRate_.denominator / frameRate_.numerator;
  };
  return static_cast<int>(samplesUpTo(framesTaken_ + 1) - samplesUpTo(framesTaken_));
}

void MovieSound::silence(int samples) {
  silence_.resize(static_cast<std::size_t>(samples) * 2);
  tracks_.fill(silence_);
}

}  // namespace zq::media
