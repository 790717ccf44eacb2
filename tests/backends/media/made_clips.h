#pragma once
// Clips made to order: frames with sound, timecode and date, as sample buffers.

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "dv/dv_system.h"
#include "dv/frame_sound.h"
#include "dv/frame_stamp.h"
#include "dv/frame_timecode.h"
#include "dv/pack.h"
#include "platform/sample_buffer.h"
#include "support/dv_frames.h"

namespace zq::test {

using Clip = std::vector<platform::QTSampleBuffer>;

inline platform::QTSampleBuffer sampleBufferOf(const SharedBytes& frame) {
  platform::QTSampleBuffer buffer;
  buffer.formatDescription = {platform::QTMediaTypeMuxed, platform::fourCharCode("dvc ")};
  buffer.bytesForAllSamples = frame;
  if (const auto timecode = firstTimecode(frame)) {
    buffer.smpteTime = valueWithSMPTETime(timecode->time);
    buffer.dropFrame = timecode->dropFrame;
  }
  return buffer;
}

inline Clip clipOfFile(const std::string& path, DVSystem system) {
  Clip clip;
  for (const SharedBytes& frame : framesOf(path, system)) clip.push_back(sampleBufferOf(frame));
  return clip;
}

/// Noise, so that no sample is like its neighbour; the same for the same frame number.
inline std::vector<std::int16_t> noise(int samples, int seed) {
  std::vector<std::int16_t> result;
  std::uint32_t state = static_cast<std::uint32_t>(seed) * 2654435761U + 1U;
  for (int i = 0; i < 2 * samples; ++i) {
    state = state * 1664525U + 1013904223U;
    result.push_back(static_cast<std::int16_t>(state >> 17U));
  }
  return result;
}

inline FrameBytes makeSoundFrameBytes(DVSystem system, int number, const FrameStamp& stamp = {}) {
  FrameBytes frame = makeFrameBytes(system, stamp);
  writeFrameSound(frame, system, noise(samplesInFrame(system, number), number));
  return frame;
}

/// Makes the AAUX source packs say another format; the sample bytes stay.
inline void setSoundFormat(std::span<std::uint8_t> frame, std::uint8_t rateCode, std::uint8_t surplusSamples) {
  const int sequences = static_cast<int>(frame.size() / SEQUENCE_SIZE);
  for (int sequence = 0; sequence < sequences; ++sequence) {
    const std::uint32_t audioBlock = audioSourceBlockOfSequence(static_cast<std::uint32_t>(sequence));
    const auto pack =
        blockAt(frame, sequence, static_cast<int>(audioBlockIndex(audioBlock))).subspan(kAudioPackStart, 5);
    pack[1] = static_cast<std::uint8_t>((pack[1] & 0xC0) | surplusSamples);
    pack[4] = static_cast<std::uint8_t>((pack[4] & 0xC7) | rateCode << 3);
  }
}

/// Makes a 625/50 frame of 48 kHz sound one of 44.1 or 32 kHz.
inline void make44100(std::span<std::uint8_t> frame625) {
  setSoundFormat(frame625, 1, 1764 - 1742);
}
inline void make32000(std::span<std::uint8_t> frame625) {
  setSoundFormat(frame625, 2, 1280 - 1264);
}

/// Makes a frame of 12-bit sound say of its second pair what it says of its first.
inline void markSecondPairRecorded(std::span<std::uint8_t> frame) {
  const int half = static_cast<int>(frame.size() / SEQUENCE_SIZE) / 2;
  for (int sequence = 0; sequence < 2 * half; ++sequence) {
    const std::uint32_t audioBlock = audioSourceBlockOfSequence(static_cast<std::uint32_t>(sequence));
    blockAt(frame, sequence, static_cast<int>(audioBlockIndex(audioBlock)))[kAudioPackStart + 2] = 0x10;
  }
}

inline Clip makeClip(DVSystem system, int frames, const FrameStamp& stamp = {}) {
  Clip clip;
  for (int i = 0; i < frames; ++i) {
    clip.push_back(sampleBufferOf(SharedBytes::copyOf(makeSoundFrameBytes(system, i, stamp))));
  }
  return clip;
}

/// What the tape has on this pair of channels, over all frames.
inline std::vector<std::int16_t> recordedSound(const Clip& clip, std::size_t pair) {
  std::vector<std::int16_t> samples;
  FrameSound sound;
  for (const auto& frame : clip) {
    if (!readFrameSound(frame.bytesForAllSamples.bytes(), sound)) continue;
    samples.insert(samples.end(), sound.pairs[pair].begin(), sound.pairs[pair].end());
  }
  return samples;
}

}  // namespace zq::test
