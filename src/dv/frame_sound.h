#pragma once
// The sound of a 25 Mbit/s DV frame (IEC 61834-2): read out of, and written into, its audio blocks.

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "dv/dv_system.h"

namespace zq {

struct SoundFormat {
  /// 48000, 44100 or 32000 samples a second.
  int sampleRate = 0;
  /// 16, linear, or 12, nonlinear on tape. What is read has 16 bits in either case.
  int tapeBits = 0;
  /// Stereo pairs: two of 12 bits, else one.
  int pairs = 0;
  /// Whether a pair was recorded. A camera leaves the second one without information until it is dubbed.
  std::array<bool, 2> recorded{};
};

struct FrameSound {
  SoundFormat format;
  /// Per channel; differs from frame to frame.
  int samples = 0;
  /// Left and right in turn, 2 x samples long; empty for a pair that the format does not have.
  std::array<std::vector<std::int16_t>, 2> pairs;
};

/// None when the buffer is no 25 Mbit/s frame, or no AAUX source pack of it names a format that exists.
std::optional<SoundFormat> soundFormatOf(std::span<const std::uint8_t> frame);

/// False, with `sound` unchanged, when there is no format. Samples that the tape marked as errors, and pairs that were
/// not recorded, are silent. The vectors are reused from frame to frame.
bool readFrameSound(std::span<const std::uint8_t> frame, FrameSound& sound);

/// Samples per channel of a frame in locked 48 kHz sound, frames counted from 0.
int samplesInFrame(DVSystem system, std::int64_t frameNumber);

/// Writes 16-bit 48 kHz stereo with its AAUX packs; `interleavedStereo` has as many samples as a frame may have
/// (samplesInFrame gives such a number). Throws std::invalid_argument when it has not.
void writeFrameSound(std::span<std::uint8_t> frame, DVSystem system, std::span<const std::int16_t> interleavedStereo);

}  // namespace zq
