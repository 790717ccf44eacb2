#pragma once
// Packs (IEC 61834-4): five bytes PC0..PC4 of which PC0 says the kind, and the places in a DIF sequence that hold them.
//
//   block   section   packs at bytes
//   1, 2    subcode   6, 14, 22, 30, 38, 46: slots 0..5 and 6..11 of the sequence
//   3, 5    VAUX      odd sequence: block 3, source at 3, source control at 8
//                     even sequence: block 5, source at 48, source control at 53
//   6 + 16k audio     3: one AAUX pack; odd sequence: source in k = 0, source control in k = 1
//                                       even sequence: source in k = 3, source control in k = 4

#include <array>
#include <cstdint>

namespace zq {

using Pack = std::array<std::uint8_t, 5>;

inline constexpr std::uint8_t kTimecodePack = 0x13;
inline constexpr std::uint8_t kAudioSourcePack = 0x50;
inline constexpr std::uint8_t kAudioSourceControlPack = 0x51;
inline constexpr std::uint8_t kVideoSourcePack = 0x60;
inline constexpr std::uint8_t kVideoSourceControlPack = 0x61;
inline constexpr std::uint8_t kRecordingDatePack = 0x62;
inline constexpr std::uint8_t kRecordingTimePack = 0x63;

/// What stands where nothing was recorded or a pack was lost.
inline constexpr Pack kNoInformationPack{0xFF, 0xFF, 0xFF, 0xFF, 0xFF};

inline constexpr std::array<std::uint32_t, 6> kSubcodePackStarts{6, 14, 22, 30, 38, 46};
inline constexpr int kSubcodeSlotsPerSequence = 12;

/// Where a sequence has its VAUX source and source control packs.
struct VauxPlace {
  std::uint32_t block;
  std::uint32_t sourceStart;
  std::uint32_t sourceControlStart;
};
constexpr VauxPlace vauxPlaceOfSequence(std::uint32_t sequenceIndex) {
  return sequenceIndex % 2 != 0 ? VauxPlace{3, 3, 8} : VauxPlace{5, 48, 53};
}

inline constexpr int kAudioBlocksPerSequence = 9;
inline constexpr std::uint32_t kAudioPackStart = 3;
/// The block index of the audio block `k` (0..8) of a sequence.
constexpr std::uint32_t audioBlockIndex(std::uint32_t k) {
  return 6 + 16 * k;
}
/// The audio block that has the AAUX source pack; the source control pack is in the next one.
constexpr std::uint32_t audioSourceBlockOfSequence(std::uint32_t sequenceIndex) {
  return sequenceIndex % 2 != 0 ? 0 : 3;
}

}  // namespace zq
