#include "dv/dv_system.h"

#include "dv/dv_constants.h"

namespace zq {
namespace {

bool is625(DVSystem system) {
  return system == DVSystem::pal625_50;
}

}  // namespace

std::size_t frameSizeOf(DVSystem system) {
  return static_cast<std::size_t>(is625(system) ? FRAME_SIZE_625_50 : FRAME_SIZE_525_60);
}

int sequenceCountOf(DVSystem system) {
  return is625(system) ? DIF_SEQ_COUNT_625_50 : DIF_SEQ_COUNT_525_60;
}

int timebaseOf(DVSystem system) {
  return is625(system) ? TIMEBASE_625_50 : TIMEBASE_525_60;
}

FrameRate frameRateOf(DVSystem system) {
  return is625(system) ? FrameRate{25, 1} : FrameRate{30000, 1001};
}

std::string_view nameOf(DVSystem system) {
  return is625(system) ? "625/50" : "525/60";
}

std::optional<DVSystem> systemOfFrameSize(std::size_t size) {
  if (size == frameSizeOf(DVSystem::ntsc525_60)) return DVSystem::ntsc525_60;
  if (size == frameSizeOf(DVSystem::pal625_50)) return DVSystem::pal625_50;
  return std::nullopt;
}

}  // namespace zq
