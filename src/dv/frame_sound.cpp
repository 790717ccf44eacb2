// AAUX source pack, 0x50, in every sequence (for where, see pack.h):
//
//   byte  bits  field
//   PC1   5-0   samples in this frame above the least number for system and rate
//   PC2   3-0   audio mode; 1111 is "no information"
//   PC4   5-3   rate: 0 48 kHz, 1 44.1 kHz, 2 32 kHz
//   PC4   2-0   quantisation: 0 16-bit linear, 1 12-bit nonlinear
//
// Where sample n of a channel is, h being half the sequences of the frame (5 or 6):
//
//   sequence     (n / 3 + 2 (n mod 3)) mod h         + h for the channel, or pair, of the second half
//   audio block  3 (n mod 3) + (n mod 9h) / 3h
//   byte         8 + size x (n / 9h)                 size 2 for 16 bits, 3 for a pair of 12-bit samples
//
// 16 bits: the first half has the left channel, the second the right; high byte first. 12 bits: each half has a pair,
// in three bytes: the high 8 bits of left, those of right, then both low nibbles.

#include "dv/frame_sound.h"

#include <algorithm>
#include <cstddef>
#include <stdexcept>

#include "dv/dv_constants.h"
#include "dv/pack.h"

namespace zq {
namespace {

using Frame = std::span<const std::uint8_t>;

constexpr std::uint32_t kBlockSize = BLOCKS_SIZE;
constexpr std::uint32_t kSequenceSize = SEQUENCE_SIZE;
constexpr std::uint32_t kFirstSampleByte = 8;
constexpr std::uint32_t kSampleBytesPerBlock = 72;
constexpr std::uint8_t kModeNoInformation = 0x0F;

// The lowest code marks a sample that could not be read from the tape.
constexpr std::uint32_t kErrorCode16 = 0x8000;
constexpr std::uint32_t kErrorCode12 = 0x800;

constexpr std::array<int, 3> kSampleRates{48000, 44100, 32000};
constexpr std::array<int, 3> kLeastSamples525{1580, 1452, 1053};
constexpr std::array<int, 3> kLeastSamples625{1896, 1742, 1264};

constexpr std::uint32_t sampleOffset(std::uint32_t n, std::uint32_t half, std::uint32_t size) {
  const std::uint32_t sequence = (n / 3 + 2 * (n % 3)) % half;
  const std::uint32_t audioBlock = 3 * (n % 3) + n % (9 * half) / (3 * half);
  const std::uint32_t byte = kFirstSampleByte + size * (n / (9 * half));
  return sequence * kSequenceSize + audioBlockIndex(audioBlock) * kBlockSize + byte;
}

/// The offsets of all samples that fit, for the channel or pair of the first half.
template <std::uint32_t half, std::uint32_t size>
constexpr auto makeOffsets() {
  constexpr std::size_t kCount = std::size_t{9} * half * (kSampleBytesPerBlock / size);
  std::array<std::uint32_t, kCount> offsets{};
  for (std::uint32_t n = 0; n < offsets.size(); ++n) offsets[n] = sampleOffset(n, half, size);
  return offsets;
}

constexpr auto kOffsets525Linear16 = makeOffsets<5, 2>();
constexpr auto kOffsets625Linear16 = makeOffsets<6, 2>();
constexpr auto kOffsets525Nonlinear12 = makeOffsets<5, 3>();
constexpr auto kOffsets625Nonlinear12 = makeOffsets<6, 3>();

std::span<const std::uint32_t> offsetsFor(DVSystem system, int tapeBits) {
  if (system == DVSystem::pal625_50) {
    if (tapeBits == 16) return kOffsets625Linear16;
    return kOffsets625Nonlinear12;
  }
  if (tapeBits == 16) return kOffsets525Linear16;
  return kOffsets525Nonlinear12;
}

// Codes up to 511 are linear; from there every 256 codes span twice as much as the 256 before. Negative codes are the
// ones' complement of positive ones.
constexpr int expandPositive(int code) {
  const int segment = code >> 8;
  if (segment < 2) return code;
  return (code - 256 * (segment - 1)) << (segment - 1);
}

constexpr auto makeExpansion() {
  std::array<std::int16_t, 4096> table{};
  for (int code = 0; code < 4096; ++code) {
    const int value = code < 2048 ? expandPositive(code) : ~expandPositive(4095 - code);
    table[static_cast<std::size_t>(code)] = static_cast<std::int16_t>(value);
  }
  table[kErrorCode12] = 0;
  return table;
}

constexpr auto kExpansion12 = makeExpansion();

/// What the AAUX source packs of a frame say.
struct SoundLayout {
  DVSystem system = DVSystem::ntsc525_60;
  SoundFormat format;
  int samples = 0;
};

std::uint32_t halfOf(DVSystem system) {
  return static_cast<std::uint32_t>(sequenceCountOf(system)) / 2;
}

std::uint32_t audioPackOffset(std::uint32_t sequence, std::uint32_t audioBlock) {
  return sequence * kSequenceSize + audioBlockIndex(audioBlock) * kBlockSize + kAudioPackStart;
}

Pack sourcePackOf(Frame frame, std::uint32_t sequence) {
  Pack pack{};
  const std::uint32_t offset = audioPackOffset(sequence, audioSourceBlockOfSequence(sequence));
  std::copy_n(frame.begin() + offset, pack.size(), pack.begin());
  return pack;
}

int leastSamples(DVSystem system, std::size_t rateIndex) {
  return system == DVSystem::pal625_50 ? kLeastSamples625[rateIndex] : kLeastSamples525[rateIndex];
}

/// None for a pack of another kind, and for a format that does not exist: 12 bits at more than 32 kHz do not fit.
std::optional<SoundLayout> layoutOfPack(const Pack& pack, DVSystem system) {
  if (pack[0] != kAudioSourcePack) return std::nullopt;
  const std::size_t rateIndex = (pack[4] >> 3) & 0x07U;
  const unsigned quantisation = pack[4] & 0x07U;
  if (rateIndex >= kSampleRates.size() || quantisation > 1) return std::nullopt;
  const bool is12Bit = quantisation == 1;
  if (is12Bit && kSampleRates[rateIndex] != 32000) return std::nullopt;

  SoundLayout layout;
  layout.system = system;
  layout.format.sampleRate = kSampleRates[rateIndex];
  layout.format.tapeBits = is12Bit ? 12 : 16;
  layout.format.pairs = is12Bit ? 2 : 1;
  const int capacity = static_cast<int>(offsetsFor(system, layout.format.tapeBits).size());
  layout.samples = std::min(leastSamples(system, rateIndex) + (pack[1] & 0x3F), capacity);
  return layout;
}

/// False when the first source pack found in these sequences says "no information".
bool isRecordedIn(Frame frame, std::uint32_t firstSequence, std::uint32_t count) {
  for (std::uint32_t sequence = firstSequence; sequence < firstSequence + count; ++sequence) {
    const Pack pack = sourcePackOf(frame, sequence);
    if (pack[0] == kAudioSourcePack) return (pack[2] & 0x0F) != kModeNoInformation;
  }
  return true;
}

void setRecorded(Frame frame, SoundLayout& layout) {
  const std::uint32_t half = halfOf(layout.system);
  const bool first = isRecordedIn(frame, 0, half);
  const bool second = isRecordedIn(frame, half, half);
  layout.format.recorded = layout.format.pairs == 2 ? std::array{first, second} : std::array{first || second, false};
}

std::optional<SoundLayout> layoutOf(Frame frame) {
  const std::optional<DVSystem> system = systemOfFrameSize(frame.size());
  if (!system) return std::nullopt;
  for (std::uint32_t sequence = 0; sequence < 2 * halfOf(*system); ++sequence) {
    std::optional<SoundLayout> layout = layoutOfPack(sourcePackOf(frame, sequence), *system);
    if (!layout) continue;
    setRecorded(frame, *layout);
    return layout;
  }
  return std::nullopt;
}

std::int16_t sample16(const std::uint8_t* bytes) {
  const std::uint32_t code = static_cast<std::uint32_t>(bytes[0]) << 8U | bytes[1];
  return code == kErrorCode16 ? std::int16_t{0} : static_cast<std::int16_t>(code);
}

void readLinear16(Frame frame, std::uint32_t rightOffset, std::span<const std::uint32_t> offsets, std::int16_t* out) {
  for (const std::uint32_t offset : offsets) {
    *out++ = sample16(&frame[offset]);
    *out++ = sample16(&frame[offset + rightOffset]);
  }
}

void readNonlinear12(Frame frame, std::uint32_t pairOffset, std::span<const std::uint32_t> offsets, std::int16_t* out) {
  for (const std::uint32_t offset : offsets) {
    const std::uint8_t* bytes = &frame[offset + pairOffset];
    *out++ = kExpansion12[static_cast<std::size_t>(bytes[0]) << 4U | bytes[2] >> 4U];
    *out++ = kExpansion12[static_cast<std::size_t>(bytes[1]) << 4U | (bytes[2] & 0x0FU)];
  }
}

void readPair(Frame frame, const SoundLayout& layout, std::size_t pair, std::vector<std::int16_t>& out) {
  const std::size_t samples = static_cast<std::size_t>(layout.samples);
  out.resize(2 * samples);
  if (!layout.format.recorded[pair]) {
    std::fill(out.begin(), out.end(), std::int16_t{0});
    return;
  }
  const auto offsets = offsetsFor(layout.system, layout.format.tapeBits).first(samples);
  const std::uint32_t secondHalf = halfOf(layout.system) * kSequenceSize;
  if (layout.format.tapeBits == 16) {
    readLinear16(frame, secondHalf, offsets, out.data());
  } else {
    readNonlinear12(frame, static_cast<std::uint32_t>(pair) * secondHalf, offsets, out.data());
  }
}

Pack sourcePackFor(DVSystem system, int samples) {
  const unsigned surplus = static_cast<unsigned>(samples - leastSamples(system, 0));
  const std::uint8_t systemBits = system == DVSystem::pal625_50 ? 0xE0 : 0xC0;
  // Locked; one channel a block; no emphasis; 48 kHz, 16 bits.
  return {kAudioSourcePack, static_cast<std::uint8_t>(0x40U | surplus), 0x10, systemBits, 0xC0};
}

void writeAudioPacks(std::span<std::uint8_t> frame, DVSystem system, int samples) {
  const Pack source = sourcePackFor(system, samples);
  // Copying allowed, no recording start or end here, normal speed forward.
  constexpr Pack kSourceControl{kAudioSourceControlPack, 0x3F, 0xCF, 0xA0, 0xFF};
  for (std::uint32_t sequence = 0; sequence < 2 * halfOf(system); ++sequence) {
    const std::uint32_t audioBlock = audioSourceBlockOfSequence(sequence);
    std::copy(source.begin(), source.end(), frame.begin() + audioPackOffset(sequence, audioBlock));
    std::copy(kSourceControl.begin(), kSourceControl.end(), frame.begin() + audioPackOffset(sequence, audioBlock + 1));
  }
}

void writeSample16(std::span<std::uint8_t> frame, std::uint32_t offset, std::int16_t sample) {
  // The code of the lowest value is the error mark.
  const std::uint32_t code = static_cast<std::uint16_t>(std::max<std::int16_t>(sample, -32767));
  frame[offset] = static_cast<std::uint8_t>(code >> 8U);
  frame[offset + 1] = static_cast<std::uint8_t>(code & 0xFFU);
}

}  // namespace

std::optional<SoundFormat> soundFormatOf(std::span<const std::uint8_t> frame) {
  const std::optional<SoundLayout> layout = layoutOf(frame);
  if (!layout) return std::nullopt;
  return layout->format;
}

bool readFrameSound(std::span<const std::uint8_t> frame, FrameSound& sound) {
  const std::optional<SoundLayout> layout = layoutOf(frame);
  if (!layout) return false;
  sound.format = layout->format;
  sound.samples = layout->samples;
  for (std::size_t pair = 0; pair < sound.pairs.size(); ++pair) {
    if (pair < static_cast<std::size_t>(layout->format.pairs)) {
      readPair(frame, *layout, pair, sound.pairs[pair]);
    } else {
      sound.pairs[pair].clear();
    }
  }
  return true;
}

int samplesInFrame(DVSystem system, std::int64_t frameNumber) {
  if (system == DVSystem::pal625_50) return 1920;
  // 8008 samples in five frames of 1001/30000 s.
  return frameNumber % 5 == 0 ? 1600 : 1602;
}

void writeFrameSound(std::span<std::uint8_t> frame, DVSystem system, std::span<const std::int16_t> interleavedStereo) {
  const std::size_t samples = interleavedStereo.size() / 2;
  const std::size_t least = static_cast<std::size_t>(leastSamples(system, 0));
  const std::span<const std::uint32_t> offsets = offsetsFor(system, 16);
  if (frame.size() != frameSizeOf(system)) throw std::invalid_argument("the buffer is no frame of the system");
  if (interleavedStereo.size() % 2 != 0 || samples < least || samples > offsets.size()) {
    throw std::invalid_argument("a frame cannot hold this number of samples");
  }

  writeAudioPacks(frame, system, static_cast<int>(samples));
  const std::uint32_t rightOffset = halfOf(system) * kSequenceSize;
  for (std::size_t n = 0; n < samples; ++n) {
    writeSample16(frame, offsets[n], interleavedStereo[2 * n]);
    writeSample16(frame, offsets[n] + rightOffset, interleavedStereo[2 * n + 1]);
  }
}

}  // namespace zq
