// One sequence of a frame, by block index:
//
//   0        header    1F D7 00  H0 F8 78 78 78, rest FF        (D: sequence number; H0: 3F 525/60, BF 625/50)
//   1, 2     subcode   3F D7 n   six times ID0 ID1 FF and a pack, rest FF
//   3..5     VAUX      5F D7 n   fifteen packs, rest FF
//   6 + 16k  audio     7F D7 k   AAUX pack, 72 bytes of samples (k = 0..8)
//   others   video     9F D7 n   STA and QNO, 76 bytes of picture (n = 0..134)
//
// Subcode ID0 has bit 7 set in the first half of the frame; the low nibble of ID1 is the slot, 0..11.

#include "dv/frame_stamp.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cstddef>

#include "dv/pack.h"

namespace zq {
namespace {

using Bytes = std::span<std::uint8_t>;

constexpr std::uint8_t kHeaderId = 0x1F;
constexpr std::uint8_t kSubcodeId = 0x3F;
constexpr std::uint8_t kVauxId = 0x5F;
constexpr std::uint8_t kAudioId = 0x7F;
constexpr std::uint8_t kVideoId = 0x9F;

Bytes blockOf(Bytes frame, std::uint32_t sequence, std::uint32_t block) {
  return frame.subspan(std::size_t{sequence} * SEQUENCE_SIZE + std::size_t{block} * BLOCKS_SIZE, BLOCKS_SIZE);
}

std::uint8_t byteOf(unsigned value) {
  return static_cast<std::uint8_t>(value);
}

void writePack(Bytes block, std::uint32_t start, const Pack& pack) {
  std::copy(pack.begin(), pack.end(), block.begin() + start);
}

/// Writes the ID and fills the rest of the block.
void startBlock(Bytes block, std::uint8_t id, std::uint32_t sequence, std::uint32_t number, std::uint8_t filling) {
  block[0] = id;
  block[1] = byteOf(sequence << 4U | 0x07U);
  block[2] = byteOf(number);
  std::fill(block.begin() + 3, block.end(), filling);
}

void writeHeaderBlock(Bytes block, std::uint32_t sequence, DVSystem system) {
  startBlock(block, kHeaderId, sequence, 0, 0xFF);
  const std::array<std::uint8_t, 5> payload{byteOf(system == DVSystem::pal625_50 ? 0xBFU : 0x3FU), 0xF8, 0x78, 0x78,
                                            0x78};
  std::copy(payload.begin(), payload.end(), block.begin() + 3);
}

void writeSubcodeBlock(Bytes block, std::uint32_t sequence, std::uint32_t number, bool firstHalf) {
  startBlock(block, kSubcodeId, sequence, number, 0xFF);
  std::uint32_t slot = number * static_cast<std::uint32_t>(kSubcodePackStarts.size());
  for (const std::uint32_t start : kSubcodePackStarts) {
    block[start - 3] = firstHalf ? 0xFF : 0x7F;
    block[start - 2] = byteOf(0xF0U | slot++);
  }
}

Pack videoSourcePack(DVSystem system) {
  const std::uint8_t systemBits = system == DVSystem::pal625_50 ? 0xE0 : 0xC0;
  return {kVideoSourcePack, 0xFF, 0xFF, systemBits, 0xFF};
}

Pack videoSourceControlPack(DVAspectRatio aspect) {
  const std::uint8_t display = aspect == 0 ? 0xCA : 0xC8;
  return {kVideoSourceControlPack, 0x3F, display, 0xFC, 0xFF};
}

void writeVideoBlock(Bytes block, std::uint32_t sequence, std::uint32_t number) {
  startBlock(block, kVideoId, sequence, number, 0x00);
  // Four luminance and two colour blocks of coefficients, each a mean of 0 (mid grey) and an end code.
  constexpr std::array<std::size_t, 6> kBlockStarts{4, 18, 32, 46, 60, 70};
  for (const std::size_t start : kBlockStarts) block[start + 1] = 0x06;
}

void writeSoundAndPicture(Bytes frame, std::uint32_t sequence) {
  std::uint32_t audio = 0;
  std::uint32_t video = 0;
  for (std::uint32_t index = 6; index < BLOCKS_PER_SEQUENCE; ++index) {
    const Bytes block = blockOf(frame, sequence, index);
    if (audio < kAudioBlocksPerSequence && index == audioBlockIndex(audio)) {
      startBlock(block, kAudioId, sequence, audio++, 0x00);
      writePack(block, kAudioPackStart, kNoInformationPack);
    } else {
      writeVideoBlock(block, sequence, video++);
    }
  }
}

void writeSequence(Bytes frame, std::uint32_t sequence, DVSystem system) {
  const bool firstHalf = static_cast<int>(sequence) < sequenceCountOf(system) / 2;
  writeHeaderBlock(blockOf(frame, sequence, 0), sequence, system);
  for (const std::uint32_t number : {0U, 1U}) {
    writeSubcodeBlock(blockOf(frame, sequence, 1 + number), sequence, number, firstHalf);
  }
  for (const std::uint32_t number : {0U, 1U, 2U}) {
    startBlock(blockOf(frame, sequence, 3 + number), kVauxId, sequence, number, 0xFF);
  }
  const VauxPlace place = vauxPlaceOfSequence(sequence);
  writePack(blockOf(frame, sequence, place.block), place.sourceStart, videoSourcePack(system));
  writePack(blockOf(frame, sequence, place.block), place.sourceControlStart, videoSourceControlPack(1));
  writeSoundAndPicture(frame, sequence);
}

/// The last two decimal digits, with the bits that no digit uses set as camcorders do.
std::uint8_t bcdWith(unsigned unusedBits, int value) {
  const unsigned twoDigits = static_cast<unsigned>(value) % 100U;
  return byteOf(unusedBits | (twoDigits / 10U) << 4U | twoDigits % 10U);
}

Pack timecodePack(const FrameStamp& stamp) {
  if (!stamp.timecode) return kNoInformationPack;
  const SMPTETime& time = *stamp.timecode;
  return {kTimecodePack, bcdWith(stamp.dropFrame ? 0xC0 : 0x80, time.mFrames), bcdWith(0x80, time.mSeconds),
          bcdWith(0x80, time.mMinutes), bcdWith(0xC0, time.mHours)};
}

Pack datePack(const FrameStamp& stamp) {
  if (!stamp.dateTime) return kNoInformationPack;
  const StampDateTime& when = *stamp.dateTime;
  return {kRecordingDatePack, 0xFF, bcdWith(0xC0, when.day), bcdWith(0xE0, when.month), bcdWith(0x00, when.year)};
}

Pack timePack(const FrameStamp& stamp) {
  if (!stamp.dateTime) return kNoInformationPack;
  const StampDateTime& when = *stamp.dateTime;
  return {kRecordingTimePack, 0xFF, bcdWith(0x80, when.seconds), bcdWith(0x80, when.minutes),
          bcdWith(0xC0, when.hours)};
}

/// `packs` are written over and over from slot 0 on.
void fillSubcode(Bytes frame, std::uint32_t sequence, std::span<const Pack> packs) {
  std::size_t slot = 0;
  for (const std::uint32_t block : {1U, 2U}) {
    for (const std::uint32_t start : kSubcodePackStarts) {
      writePack(blockOf(frame, sequence, block), start, packs[slot++ % packs.size()]);
    }
  }
}

}  // namespace

void writeFrameSkeleton(std::span<std::uint8_t> frame, DVSystem system) {
  assert(frame.size() == frameSizeOf(system));
  const std::uint32_t count = static_cast<std::uint32_t>(sequenceCountOf(system));
  for (std::uint32_t sequence = 0; sequence < count; ++sequence) writeSequence(frame, sequence, system);
}

void stampFrame(std::span<std::uint8_t> frame, const FrameStamp& stamp) {
  assert(systemOfFrameSize(frame.size()).has_value());
  const std::array<Pack, 3> packs{timecodePack(stamp), datePack(stamp), timePack(stamp)};
  const std::uint32_t count = static_cast<std::uint32_t>(frame.size() / SEQUENCE_SIZE);
  for (std::uint32_t sequence = 0; sequence < count; ++sequence) {
    const bool firstHalf = sequence < count / 2;
    fillSubcode(frame, sequence, std::span(packs).first(firstHalf ? 1 : packs.size()));
    if (stamp.aspect) {
      const VauxPlace place = vauxPlaceOfSequence(sequence);
      writePack(blockOf(frame, sequence, place.block), place.sourceControlStart, videoSourceControlPack(*stamp.aspect));
    }
  }
}

}  // namespace zq
