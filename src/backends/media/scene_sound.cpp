#include "backends/media/scene_sound.h"

#include <cmath>
#include <cstddef>
#include <numbers>

namespace zq::media {
namespace {

constexpr double kToneLevel = 2000.0;
constexpr double kBeepLevel = 9000.0;
constexpr int kBeepFrequency = 1000;

double sine(int frequency, int sample) {
  return std::sin(2 * std::numbers::pi * frequency * sample / SceneSound::kRate);
}

std::int16_t sampleOf(int frequency, int sample) {
  // The beep comes on top of the tone and lasts whole cycles, so that neither starts or ends with a click.
  const bool beep = sample < SceneSound::kBeepSeconds * SceneSound::kRate;
  return static_cast<std::int16_t>(
      std::lround(kToneLevel * sine(frequency, sample) + (beep ? kBeepLevel * sine(kBeepFrequency, sample) : 0.0)));
}

}  // namespace

SceneSound::SceneSound(int scene) {
  // A fifth apart, so that nobody takes one channel for the other.
  const int left = 200 + 40 * (scene % 10);
  const int right = left * 3 / 2;
  second_.reserve(std::size_t{2} * kRate);
  for (int sample = 0; sample < kRate; ++sample) {
    second_.push_back(sampleOf(left, sample));
    second_.push_back(sampleOf(right, sample));
  }
}

const std::vector<std::int16_t>& SceneSound::next(int count) {
  samples_.clear();
  for (int i = 0; i < count; ++i) {
    const auto at = static_cast<std::size_t>(position_) * 2;
    samples_.push_back(second_[at]);
    samples_.push_back(second_[at + 1]);
    position_ = (position_ + 1) % kRate;
  }
  return samples_;
}

}  // namespace zq::media
