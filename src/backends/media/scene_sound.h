#pragma once
// The sound of a made-up scene: a tone of its own in each channel, and a short beep at the start of every second.

#include <cstdint>
#include <vector>

namespace zq::media {

class SceneSound {
 public:
  static constexpr int kRate = 48000;
  /// Length of the beep, as a part of the second.
  static constexpr double kBeepSeconds = 0.08;

  explicit SceneSound(int scene);
  /// The next `count` stereo samples, interleaved; valid until the next call.
  const std::vector<std::int16_t>& next(int count);

 private:
  // One second, which repeats: every tone has a whole number of cycles in it.
  std::vector<std::int16_t> second_;
  std::vector<std::int16_t> samples_;
  int position_ = 0;
};

}  // namespace zq::media
