#include "backends/media/picture_shape.h"

#include <cstddef>

#include "dv/dv_constants.h"
#include "dv/pack.h"

namespace zq::media {
namespace {

// The VAUX source control pack, of which only the display mode matters here:
//
//   byte  0     1     2               3     4
//         0x61        .. .. .DISP(3)
//
// 0 is 4:3, 1 a letterbox within 4:3, 2 a full 16:9 picture; 7 is what camcorders set that squeeze 16:9 optically.
constexpr std::uint8_t kDisplayModeMask = 0x07;

bool isWideDisplayMode(std::uint8_t mode) {
  return mode == 2 || mode == 7;
}

}  // namespace

bool isWideScreen(std::span<const std::uint8_t> frame) {
  const std::size_t sequenceCount = frame.size() / SEQUENCE_SIZE;
  for (std::uint32_t sequence = 0; sequence < sequenceCount; ++sequence) {
    const VauxPlace place = vauxPlaceOfSequence(sequence);
    const std::size_t start =
        std::size_t{sequence} * SEQUENCE_SIZE + std::size_t{place.block} * BLOCKS_SIZE + place.sourceControlStart;
    const auto pack = frame.subspan(start, 5);
    if (pack[0] == kVideoSourceControlPack) return isWideDisplayMode(pack[2] & kDisplayModeMask);
  }
  return false;
}

}  // namespace zq::media
