#pragma once
// DV frames made to order for tests.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

#include "base/shared_bytes.h"
#include "dv/dv_constants.h"
#include "dv/dv_system.h"
#include "dv/frame_stamp.h"
#include "dv/pack.h"
#include "timecode/smpte_time.h"

namespace zq::test {

using FrameBytes = std::vector<std::uint8_t>;

/// Hours, minutes, seconds and frames; every other field is 0.
inline SMPTETime timecodeOf(int hours, int minutes, int seconds, int frames, std::uint32_t type = 0) {
  SMPTETime time;
  time.mType = type;
  time.mHours = static_cast<std::int16_t>(hours);
  time.mMinutes = static_cast<std::int16_t>(minutes);
  time.mSeconds = static_cast<std::int16_t>(seconds);
  time.mFrames = static_cast<std::int16_t>(frames);
  return time;
}

/// A whole grey, silent frame; without a stamp it has no timecode and no date.
inline FrameBytes makeFrameBytes(DVSystem system, const FrameStamp& stamp = {}) {
  FrameBytes frame(frameSizeOf(system));
  writeFrameSkeleton(frame, system);
  stampFrame(frame, stamp);
  return frame;
}

inline SharedBytes makeFrame(DVSystem system, const FrameStamp& stamp = {}) {
  return SharedBytes::copyOf(makeFrameBytes(system, stamp));
}

inline std::span<std::uint8_t> blockAt(std::span<std::uint8_t> frame, int sequence, int block) {
  return frame.subspan(static_cast<std::size_t>(sequence * SEQUENCE_SIZE + block * BLOCKS_SIZE), BLOCKS_SIZE);
}

/// `slot` is 0..5 in the first subcode block, 6..11 in the second.
inline void setSubcodePack(std::span<std::uint8_t> frame, int sequence, int slot, const Pack& pack) {
  const auto block = blockAt(frame, sequence, 1 + slot / 6);
  std::copy(pack.begin(), pack.end(), block.begin() + kSubcodePackStarts[static_cast<std::size_t>(slot % 6)]);
}

inline void setSubcodePackInAllSlots(std::span<std::uint8_t> frame, int sequence, const Pack& pack) {
  for (int slot = 0; slot < kSubcodeSlotsPerSequence; ++slot) setSubcodePack(frame, sequence, slot, pack);
}

/// The source control pack where the sequence of this index has it.
inline void setVideoSourceControlPack(std::span<std::uint8_t> frame, int sequence, const Pack& pack) {
  const VauxPlace place = vauxPlaceOfSequence(static_cast<std::uint32_t>(sequence));
  const auto block = blockAt(frame, sequence, static_cast<int>(place.block));
  std::copy(pack.begin(), pack.end(), block.begin() + place.sourceControlStart);
}

inline void setVideoSourcePack(std::span<std::uint8_t> frame, int sequence, const Pack& pack) {
  const VauxPlace place = vauxPlaceOfSequence(static_cast<std::uint32_t>(sequence));
  const auto block = blockAt(frame, sequence, static_cast<int>(place.block));
  std::copy(pack.begin(), pack.end(), block.begin() + place.sourceStart);
}

/// Makes a block claim another section type.
inline void setSectionType(std::span<std::uint8_t> frame, int sequence, int block, int sectionType) {
  std::uint8_t& id = blockAt(frame, sequence, block)[0];
  id = static_cast<std::uint8_t>(sectionType << 5 | (id & 0x1F));
}

/// Makes the header block of a sequence claim another sequence number.
inline void setSequenceNumber(std::span<std::uint8_t> frame, int sequence, int number) {
  std::uint8_t& id = blockAt(frame, sequence, 0)[1];
  id = static_cast<std::uint8_t>(number << 4 | (id & 0x0F));
}

/// All bytes of a file; throws when it cannot be read.
inline FrameBytes readFile(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) throw std::runtime_error("cannot read " + path.string());
  return FrameBytes(std::istreambuf_iterator<char>(file), {});
}

/// The frames of a raw DV file, all of one system.
inline std::vector<SharedBytes> framesOf(const std::filesystem::path& path, DVSystem system) {
  const FrameBytes bytes = readFile(path);
  const std::size_t size = frameSizeOf(system);
  std::vector<SharedBytes> frames;
  for (std::size_t start = 0; start + size <= bytes.size(); start += size) {
    frames.push_back(SharedBytes::copyOf(std::span(bytes).subspan(start, size)));
  }
  return frames;
}

}  // namespace zq::test
