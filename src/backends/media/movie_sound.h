#pragma once
// The sound of a movie, frame by frame, in the one format that a movie file can have.

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "dv/dv_system.h"
#include "dv/frame_sound.h"

namespace zq::media {

struct MovieSoundFormat {
  int rate = 48000;
  /// Of stereo, one for each recorded pair.
  int tracks = 1;

  bool operator==(const MovieSoundFormat&) const = default;
};

class MovieSound {
 public:
  /// What frames like this one need; none when its sound cannot be read.
  static std::optional<MovieSoundFormat> formatOf(std::span<const std::uint8_t> frame);

  MovieSound(DVSystem system, MovieSoundFormat format);

  enum class Source {
    frame,        ///< The tracks hold what the frame has.
    nothing,      ///< The frame has no readable sound: silence as long as its picture.
    otherFormat,  ///< It has sound that does not fit the movie: silence where it does not.
  };
  /// Takes the next frame.
  Source take(std::span<const std::uint8_t> frame);
  /// Interleaved stereo samples of the frame taken last.
  std::span<const std::int16_t> track(int index) const;

 private:
  int nominalSamples() const;
  void silence(int samples);

  // Constant after construction.
  const FrameRate frameRate_;
  const MovieSoundFormat format_;

  std::int64_t framesTaken_ = 0;
  FrameSound sound_;
  std::vector<std::int16_t> silence_;
  std::array<std::span<const std::int16_t>, 2> tracks_;
};

}  // namespace zq::media
