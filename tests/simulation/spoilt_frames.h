#pragma once
// What the deck's faults leave of a frame.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "backends/deck/deck_options.h"
#include "dv/dv_constants.h"

namespace zq::test {

/// Whether no byte differs but those of recording dates, where the deck loses them.
inline bool hasLostDates(std::span<const std::uint8_t> sequence, std::span<const std::uint8_t> original) {
  std::size_t differing = 0;
  std::size_t lost = 0;
  for (std::size_t i = 0; i < original.size(); ++i) differing += sequence[i] != original[i] ? 1 : 0;
  for (std::size_t pack = 0; pack < 12; ++pack) {
    const std::size_t start = (1 + pack / 6) * BLOCKS_SIZE + 6 + (pack % 6) * 8;
    if (original[start] != 0x62 && original[start] != 0x63) continue;
    for (std::size_t i = start; i < start + 5; ++i) lost += sequence[i] == 0xFF && original[i] != 0xFF ? 1 : 0;
  }
  return differing == lost;
}

/// The sequence with each picture block's error status as it was.
inline std::vector<std::uint8_t> withoutErrorStatus(std::span<const std::uint8_t> sequence,
                                                    std::span<const std::uint8_t> original) {
  std::vector<std::uint8_t> bytes(sequence.begin(), sequence.end());
  for (std::size_t block = 0; block + BLOCKS_SIZE <= bytes.size(); block += BLOCKS_SIZE) {
    if (original[block] >> 5 == 4 && bytes[block + 3] >> 4 == 0xA) bytes[block + 3] = original[block + 3];
  }
  return bytes;
}

/// Whether a frame is `original` as these faults leave it: at most one sequence lost, errors marked, dates gone.
inline bool isSpoilt(std::span<const std::uint8_t> frame, std::span<const std::uint8_t> original,
                     const backend::DeckFaults& faults) {
  if (frame.size() != original.size()) return false;
  int lostSequences = 0;
  for (std::size_t start = 0; start < original.size(); start += SEQUENCE_SIZE) {
    const auto is = frame.subspan(start, SEQUENCE_SIZE);
    const auto was = original.subspan(start, SEQUENCE_SIZE);
    if (std::ranges::equal(is, was)) continue;
    if (faults.damagedFrames > 0 && lostSequences == 0 &&
        std::ranges::all_of(is, [](auto byte) { return byte == 0; })) {
      ++lostSequences;
      continue;
    }
    const auto unmarked =
        faults.damagedFrames > 0 ? withoutErrorStatus(is, was) : std::vector<std::uint8_t>(is.begin(), is.end());
    const bool explained =
        std::ranges::equal(unmarked, was) || (faults.undatedFrames > 0 && hasLostDates(unmarked, was));
    if (!explained) return false;
  }
  return true;
}

}  // namespace zq::test
