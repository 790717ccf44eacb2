#pragma once
// Clips whose two fields differ: what moves is further on in the top field than in the bottom one before it.

#include <array>
#include <cmath>
#include <cstdint>
#include <map>
#include <numbers>
#include <stdexcept>
#include <utility>

#include "backends/media/dv_picture_encoder.h"
#include "backends/media/scene_painter.h"
#include "dv/frame_sound.h"
#include "dv/frame_stamp.h"
#include "made_clips.h"
#include "support/dv_frames.h"

namespace zq::test {

namespace detail {

/// A wave of this length, sampled so that it can be read at any place.
inline std::array<std::uint8_t, 4096> wave(int length, int middle, int height) {
  std::array<std::uint8_t, 4096> result{};
  for (std::size_t i = 0; i < result.size(); ++i) {
    const double phase = 2 * std::numbers::pi * static_cast<double>(i) / length;
    result[i] = static_cast<std::uint8_t>(std::lround(middle + height * std::sin(phase)));
  }
  return result;
}

inline void paintMoving(int frame, const media::PicturePlanes& planes) {
  constexpr int kColumnsPerField = 4;
  static const auto across = wave(96, 90, 50);
  static const auto down = wave(160, 30, 25);
  static const auto colour = wave(240, 128, 60);
  for (std::size_t plane = 0; plane < 3; ++plane) {
    const int shiftX = plane == 0 ? 0 : planes.chromaShiftX;
    const int shiftY = plane == 0 ? 0 : planes.chromaShiftY;
    for (int y = 0; y < planes.height >> shiftY; ++y) {
      const int moved = kColumnsPerField * (2 * frame + (y % 2 == 0 ? 1 : 0));
      std::uint8_t* line = planes.data[plane] + static_cast<std::ptrdiff_t>(y) * planes.stride[plane];
      for (int x = 0; x < planes.width >> shiftX; ++x) {
        const auto place = static_cast<std::size_t>((x << shiftX) + (plane == 0 ? moved : 0));
        const auto row = static_cast<std::size_t>(y << shiftY);
        line[x] = plane == 0   ? static_cast<std::uint8_t>(across[place] + down[row])
                  : plane == 1 ? colour[place]
                               : colour[row + place];
      }
    }
  }
}

}  // namespace detail

inline Clip makeMovingClip(DVSystem system, bool wide, int frames) {
  auto encoder = media::DVPictureEncoder::create(system, wide);
  if (!encoder.ok()) throw std::runtime_error(encoder.error().text());
  Clip clip;
  for (int i = 0; i < frames; ++i) {
    const auto encoded =
        encoder.value()->encode([&](const media::PicturePlanes& planes) { detail::paintMoving(i, planes); });
    if (!encoded.ok()) throw std::runtime_error(encoded.error().text());
    writeFrameSound(encoded.value(), system, noise(samplesInFrame(system, i), i));
    FrameStamp stamp;
    stamp.timecode = timecodeOf(1, 2, 3, 4 + i);
    stamp.dateTime = StampDateTime{2004, 7, 15, 13, 30, 45};
    stampFrame(encoded.value(), stamp);
    clip.push_back(sampleBufferOf(SharedBytes::copyOf(encoded.value())));
  }
  return clip;
}

/// The first frames of one that is made once.
inline Clip movingClip(DVSystem system, bool wide, int frames) {
  constexpr int kMost = 12;
  static std::map<std::pair<DVSystem, bool>, Clip> clips;
  Clip& clip = clips[{system, wide}];
  if (clip.empty()) clip = makeMovingClip(system, wide, kMost);
  return {clip.begin(), clip.begin() + frames};
}

}  // namespace zq::test
