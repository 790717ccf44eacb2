#pragma once
// The two DV systems and what differs between them.

#include <cstddef>
#include <optional>
#include <string_view>

namespace zq {

enum class DVSystem { ntsc525_60, pal625_50 };

/// Frames per second, exactly.
struct FrameRate {
  int numerator = 0;
  int denominator = 1;

  bool operator==(const FrameRate&) const = default;
};

/// Bytes of a 25 Mbit/s frame.
std::size_t frameSizeOf(DVSystem system);
/// DIF sequences of a 25 Mbit/s frame.
int sequenceCountOf(DVSystem system);
/// Whole frames per timecode second.
int timebaseOf(DVSystem system);
FrameRate frameRateOf(DVSystem system);
/// "525/60" or "625/50".
std::string_view nameOf(DVSystem system);

/// The system whose 25 Mbit/s frames have this many bytes.
std::optional<DVSystem> systemOfFrameSize(std::size_t size);

}  // namespace zq
