#include "dv/frame_sound.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numeric>
#include <random>
#include <stdexcept>
#include <string>

#include "support/dv_frames.h"

namespace zq {
namespace {

using test::blockAt;
using test::FrameBytes;
using test::makeFrameBytes;

/// The third and fourth field of an AAUX source pack's PC4: rate, quantisation.
constexpr std::uint8_t k48Linear = 0xC0;
constexpr std::uint8_t k44Linear = 0xC8;
constexpr std::uint8_t k32Linear = 0xD0;
constexpr std::uint8_t k32Nonlinear = 0xD1;

/// FNV-1a, 64 bits, over the samples as little-endian bytes.
class SampleHash {
 public:
  void add(std::span<const std::int16_t> samples) {
    for (const std::int16_t sample : samples) {
      addByte(static_cast<std::uint16_t>(sample) & 0xFFU);
      addByte(static_cast<std::uint16_t>(sample) >> 8U);
    }
  }
  std::uint64_t value() const { return value_; }

 private:
  void addByte(unsigned byte) { value_ = (value_ ^ byte) * 0x100000001B3ULL; }

  std::uint64_t value_ = 0xCBF29CE484222325ULL;
};

std::uint64_t hashOf(std::span<const std::int16_t> samples) {
  SampleHash hash;
  hash.add(samples);
  return hash.value();
}

void setSourcePack(FrameBytes& frame, int sequence, const Pack& pack) {
  const std::uint32_t audioBlock = audioSourceBlockOfSequence(static_cast<std::uint32_t>(sequence));
  const auto block = blockAt(frame, sequence, static_cast<int>(audioBlockIndex(audioBlock)));
  std::copy(pack.begin(), pack.end(), block.begin() + kAudioPackStart);
}

void setSourcePacks(FrameBytes& frame, int first, int count, const Pack& pack) {
  for (int sequence = first; sequence < first + count; ++sequence) setSourcePack(frame, sequence, pack);
}

/// A frame of seeded noise for sound, under source packs of this format and 7 samples more than the least.
FrameBytes noiseFrame(DVSystem system, std::uint8_t format) {
  FrameBytes frame = makeFrameBytes(system);
  std::mt19937 generator(20040715);
  const int count = sequenceCountOf(system);
  for (int sequence = 0; sequence < count; ++sequence) {
    for (std::uint32_t k = 0; k < kAudioBlocksPerSequence; ++k) {
      const auto samples = blockAt(frame, sequence, static_cast<int>(audioBlockIndex(k))).subspan(8);
      for (std::uint8_t& byte : samples) byte = static_cast<std::uint8_t>(generator() & 0xFFU);
    }
  }
  setSourcePacks(frame, 0, count, {0x50, 0x47, 0x10, 0xC0, format});
  return frame;
}

FrameSound soundOf(const FrameBytes& frame) {
  FrameSound sound;
  EXPECT_TRUE(readFrameSound(frame, sound));
  return sound;
}

/// So many samples of a stereo pair.
std::vector<std::int16_t> silence(std::size_t samples) {
  return std::vector<std::int16_t>(2 * samples);
}

std::vector<std::int16_t> ramp(int samples) {
  std::vector<std::int16_t> stereo;
  for (int n = 0; n < samples; ++n) {
    stereo.push_back(static_cast<std::int16_t>(n * 17));
    stereo.push_back(static_cast<std::int16_t>(-n * 19 - 1));
  }
  return stereo;
}

TEST(FrameSound, DigitalEightFixtureSoundsAsFFmpegDecodesIt) {
  // Both pairs of all five frames, hashed, as FFmpeg 5.1 decodes them.
  const auto frames =
      test::framesOf(std::string(DECKHAND_FIXTURES) + "/sony-digital8-ntsc-5-frames.dv", DVSystem::ntsc525_60);
  std::array<SampleHash, 2> hashes;
  std::vector<int> samples;
  FrameSound sound;
  for (const SharedBytes& frame : frames) {
    ASSERT_TRUE(readFrameSound(frame.bytes(), sound));
    EXPECT_EQ(sound.format.sampleRate, 32000);
    EXPECT_EQ(sound.format.tapeBits, 12);
    EXPECT_EQ(sound.format.pairs, 2);
    EXPECT_TRUE(sound.format.recorded[0]);
    EXPECT_FALSE(sound.format.recorded[1]);
    samples.push_back(sound.samples);
    for (std::size_t pair = 0; pair < 2; ++pair) hashes[pair].add(sound.pairs[pair]);
  }
  EXPECT_EQ(std::accumulate(samples.begin(), samples.end(), 0), 5339);
  EXPECT_EQ(hashes[0].value(), 0x9AE753914D295C36ULL);
  EXPECT_EQ(hashes[1].value(), 0xF6F8BF352FC30015ULL);
}

struct FormatCase {
  DVSystem system;
  std::uint8_t format;
  int sampleRate;
  int tapeBits;
  int samples;
  std::array<std::uint64_t, 2> hashes;
};

TEST(FrameSound, NoiseInEveryFormatSoundsAsFFmpegDecodesIt) {
  // The same frames, decoded by FFmpeg 5.1 and hashed.
  constexpr DVSystem kNtsc = DVSystem::ntsc525_60;
  constexpr DVSystem kPal = DVSystem::pal625_50;
  const std::vector<FormatCase> cases{
      {kNtsc, k48Linear, 48000, 16, 1587, {0xF9CAF923A04E79F9ULL, 0xCBF29CE484222325ULL}},
      {kNtsc, k44Linear, 44100, 16, 1459, {0xDB447887D7BDFC54ULL, 0xCBF29CE484222325ULL}},
      {kNtsc, k32Linear, 32000, 16, 1060, {0x520B30D70D506F37ULL, 0xCBF29CE484222325ULL}},
      {kNtsc, k32Nonlinear, 32000, 12, 1060, {0x74F1405D6CB50148ULL, 0x99918E377FE85E22ULL}},
      {kPal, k48Linear, 48000, 16, 1903, {0xCD87E694124801C1ULL, 0xCBF29CE484222325ULL}},
      {kPal, k44Linear, 44100, 16, 1749, {0xFFF279A9BF287435ULL, 0xCBF29CE484222325ULL}},
      {kPal, k32Linear, 32000, 16, 1271, {0x495762FF42961105ULL, 0xCBF29CE484222325ULL}},
      {kPal, k32Nonlinear, 32000, 12, 1271, {0x831E518CCDED39A0ULL, 0xB7F6EE020CB364A6ULL}},
  };
  for (const FormatCase& expected : cases) {
    SCOPED_TRACE(std::string(nameOf(expected.system)) + " " + std::to_string(expected.sampleRate) + " Hz " +
                 std::to_string(expected.tapeBits));
    const FrameSound sound = soundOf(noiseFrame(expected.system, expected.format));
    EXPECT_EQ(sound.format.sampleRate, expected.sampleRate);
    EXPECT_EQ(sound.format.tapeBits, expected.tapeBits);
    EXPECT_EQ(sound.format.pairs, expected.tapeBits == 12 ? 2 : 1);
    EXPECT_EQ(sound.samples, expected.samples);
    EXPECT_EQ(hashOf(sound.pairs[0]), expected.hashes[0]);
    EXPECT_EQ(hashOf(sound.pairs[1]), expected.hashes[1]);
  }
}

TEST(FrameSound, WrittenSoundIsReadBack) {
  for (const DVSystem system : {DVSystem::ntsc525_60, DVSystem::pal625_50}) {
    for (const std::int64_t frameNumber : {0, 1}) {
      const std::vector<std::int16_t> written = ramp(samplesInFrame(system, frameNumber));
      FrameBytes frame = makeFrameBytes(system);
      writeFrameSound(frame, system, written);
      const FrameSound sound = soundOf(frame);
      EXPECT_EQ(sound.format.sampleRate, 48000);
      EXPECT_EQ(sound.format.tapeBits, 16);
      EXPECT_EQ(sound.format.pairs, 1);
      EXPECT_TRUE(sound.format.recorded[0]);
      EXPECT_EQ(sound.samples, samplesInFrame(system, frameNumber));
      EXPECT_EQ(sound.pairs[0], written);
      EXPECT_TRUE(sound.pairs[1].empty());
    }
  }
}

TEST(FrameSound, WritingTouchesAudioBlocksOnly) {
  const FrameBytes before = makeFrameBytes(DVSystem::ntsc525_60);
  FrameBytes frame = before;
  writeFrameSound(frame, DVSystem::ntsc525_60, ramp(1602));
  for (std::size_t at = 0; at < frame.size(); ++at) {
    const std::size_t block = at / BLOCKS_SIZE % BLOCKS_PER_SEQUENCE;
    const bool isAudio = block >= 6 && (block - 6) % 16 == 0;
    if (isAudio && at % BLOCKS_SIZE >= 3) continue;
    ASSERT_EQ(frame[at], before[at]) << at;
  }
}

TEST(FrameSound, LowestSampleIsNotWrittenAsAnError) {
  FrameBytes frame = makeFrameBytes(DVSystem::pal625_50);
  const std::vector<std::int16_t> written(3840, -32768);
  writeFrameSound(frame, DVSystem::pal625_50, written);
  EXPECT_EQ(soundOf(frame).pairs[0], std::vector<std::int16_t>(3840, -32767));
}

TEST(FrameSound, NumbersOfSamplesThatDoNotFitAreRefused) {
  FrameBytes frame = makeFrameBytes(DVSystem::ntsc525_60);
  const auto write = [&frame](const std::vector<std::int16_t>& stereo) {
    writeFrameSound(frame, DVSystem::ntsc525_60, stereo);
  };
  EXPECT_THROW(write(silence(1579)), std::invalid_argument);
  EXPECT_NO_THROW(write(silence(1580)));
  EXPECT_THROW(write(std::vector<std::int16_t>(3201)), std::invalid_argument);
  EXPECT_NO_THROW(write(silence(1620)));
  EXPECT_THROW(write(silence(1621)), std::invalid_argument);
  EXPECT_THROW(writeFrameSound(frame, DVSystem::pal625_50, ramp(1920)), std::invalid_argument);
}

TEST(FrameSound, LockedSoundKeepsTimeWithThePicture) {
  EXPECT_EQ(samplesInFrame(DVSystem::pal625_50, 0), 1920);
  EXPECT_EQ(samplesInFrame(DVSystem::pal625_50, 7), 1920);
  const std::vector<int> expected{1600, 1602, 1602, 1602, 1602, 1600};
  for (std::size_t frame = 0; frame < expected.size(); ++frame) {
    EXPECT_EQ(samplesInFrame(DVSystem::ntsc525_60, static_cast<std::int64_t>(frame)), expected[frame]) << frame;
  }
  EXPECT_EQ(samplesInFrame(DVSystem::ntsc525_60, 5'000'000'000), 1600);
}

TEST(FrameSound, ErrorMarksOf16BitsAreSilent) {
  FrameBytes frame = noiseFrame(DVSystem::ntsc525_60, k48Linear);
  for (int sequence = 0; sequence < 10; ++sequence) {
    for (std::uint32_t k = 0; k < kAudioBlocksPerSequence; ++k) {
      const auto samples = blockAt(frame, sequence, static_cast<int>(audioBlockIndex(k))).subspan(8);
      for (std::size_t at = 0; at < samples.size(); at += 2) {
        samples[at] = 0x80;
        samples[at + 1] = 0x00;
      }
    }
  }
  EXPECT_EQ(soundOf(frame).pairs[0], silence(1587));
}

TEST(FrameSound, ErrorMarksOf12BitsAreSilent) {
  FrameBytes frame = noiseFrame(DVSystem::pal625_50, k32Nonlinear);
  for (int sequence = 0; sequence < 12; ++sequence) {
    for (std::uint32_t k = 0; k < kAudioBlocksPerSequence; ++k) {
      const auto samples = blockAt(frame, sequence, static_cast<int>(audioBlockIndex(k))).subspan(8);
      for (std::size_t at = 0; at < samples.size(); ++at) samples[at] = at % 3 == 2 ? 0x00 : 0x80;
    }
  }
  const FrameSound sound = soundOf(frame);
  EXPECT_EQ(sound.pairs[0], silence(1271));
  EXPECT_EQ(sound.pairs[1], silence(1271));
}

/// Sample 0 of pair 0 is in the first three bytes of audio block 0 of sequence 0.
std::int16_t expanded(int code) {
  FrameBytes frame = noiseFrame(DVSystem::ntsc525_60, k32Nonlinear);
  const auto samples = blockAt(frame, 0, static_cast<int>(audioBlockIndex(0))).subspan(8);
  samples[0] = static_cast<std::uint8_t>(code >> 4 & 0xFF);
  samples[2] = static_cast<std::uint8_t>(code << 4 & 0xF0);
  return soundOf(frame).pairs[0][0];
}

TEST(FrameSound, TwelveBitsExpandInSegments) {
  EXPECT_EQ(expanded(0x000), 0);
  EXPECT_EQ(expanded(0x1FF), 511);
  EXPECT_EQ(expanded(0x200), 512);
  EXPECT_EQ(expanded(0x201), 514);
  EXPECT_EQ(expanded(0x2FF), 1022);
  EXPECT_EQ(expanded(0x300), 1024);
  EXPECT_EQ(expanded(0x400), 2048);
  EXPECT_EQ(expanded(0x500), 4096);
  EXPECT_EQ(expanded(0x600), 8192);
  EXPECT_EQ(expanded(0x700), 16384);
  EXPECT_EQ(expanded(0x7FF), 32704);
  EXPECT_EQ(expanded(0xFFF), -1);
  EXPECT_EQ(expanded(0xE00), -512);
  EXPECT_EQ(expanded(0xDFF), -513);
  EXPECT_EQ(expanded(0x801), -32641);
}

TEST(FrameSound, PairWithoutInformationIsSilent) {
  FrameBytes frame = noiseFrame(DVSystem::ntsc525_60, k32Nonlinear);
  setSourcePacks(frame, 5, 5, {0x50, 0x47, 0x3F, 0xC0, k32Nonlinear});
  const FrameSound sound = soundOf(frame);
  EXPECT_TRUE(sound.format.recorded[0]);
  EXPECT_FALSE(sound.format.recorded[1]);
  EXPECT_NE(sound.pairs[0], silence(1060));
  EXPECT_EQ(sound.pairs[1], silence(1060));
}

TEST(FrameSound, StereoIsRecordedWhenEitherChannelIs) {
  FrameBytes frame = noiseFrame(DVSystem::ntsc525_60, k48Linear);
  setSourcePacks(frame, 5, 5, {0x50, 0x47, 0x1F, 0xC0, k48Linear});
  EXPECT_TRUE(soundFormatOf(frame)->recorded[0]);
  setSourcePacks(frame, 0, 5, {0x50, 0x47, 0x1F, 0xC0, k48Linear});
  EXPECT_FALSE(soundFormatOf(frame)->recorded[0]);
  EXPECT_EQ(soundOf(frame).pairs[0], silence(1587));
}

TEST(FrameSound, OneSourcePackIsEnough) {
  FrameBytes frame = noiseFrame(DVSystem::pal625_50, k48Linear);
  const FrameSound whole = soundOf(frame);
  setSourcePacks(frame, 0, 11, kNoInformationPack);
  EXPECT_EQ(soundOf(frame).pairs[0], whole.pairs[0]);
}

TEST(FrameSound, SurplusOfSamplesIsLimitedToWhatFits) {
  const auto samplesWithMost = [](DVSystem system, std::uint8_t format) {
    FrameBytes frame = noiseFrame(system, format);
    setSourcePacks(frame, 0, sequenceCountOf(system), {0x50, 0x7F, 0x10, 0xC0, format});
    return soundOf(frame).samples;
  };
  EXPECT_EQ(samplesWithMost(DVSystem::ntsc525_60, k48Linear), 1620);
  EXPECT_EQ(samplesWithMost(DVSystem::ntsc525_60, k44Linear), 1452 + 63);
  EXPECT_EQ(samplesWithMost(DVSystem::ntsc525_60, k32Nonlinear), 1080);
  EXPECT_EQ(samplesWithMost(DVSystem::pal625_50, k48Linear), 1944);
  EXPECT_EQ(samplesWithMost(DVSystem::pal625_50, k32Nonlinear), 1296);
}

TEST(FrameSound, FormatsThatDoNotExistAreNone) {
  for (const int format : {0xC1, 0xC9, 0xC2, 0xD2, 0xD8, 0xF8, 0xFF}) {
    const FrameBytes frame = noiseFrame(DVSystem::ntsc525_60, static_cast<std::uint8_t>(format));
    EXPECT_FALSE(soundFormatOf(frame)) << format;
  }
}

TEST(FrameSound, TwelveBitsAt48KilohertzOfThePalFixtureAreNone) {
  const auto frames = test::framesOf(std::string(DECKHAND_FIXTURES) + "/pal-undated-15-frames.dv", DVSystem::pal625_50);
  EXPECT_FALSE(soundFormatOf(frames.at(0).bytes()));
}

TEST(FrameSound, FrameWithoutSoundLeavesTheResultUnchanged) {
  FrameSound sound = soundOf(noiseFrame(DVSystem::ntsc525_60, k32Linear));
  const FrameSound before = sound;
  EXPECT_FALSE(readFrameSound(makeFrameBytes(DVSystem::ntsc525_60), sound));
  EXPECT_FALSE(readFrameSound({}, sound));
  EXPECT_FALSE(readFrameSound(FrameBytes(119999), sound));
  EXPECT_EQ(sound.samples, before.samples);
  EXPECT_EQ(sound.pairs, before.pairs);
}

TEST(FrameSound, VectorsAreReused) {
  const FrameBytes frame = noiseFrame(DVSystem::pal625_50, k32Nonlinear);
  FrameSound sound = soundOf(frame);
  const std::int16_t* storage = sound.pairs[0].data();
  ASSERT_TRUE(readFrameSound(frame, sound));
  EXPECT_EQ(sound.pairs[0].data(), storage);
}

}  // namespace
}  // namespace zq
