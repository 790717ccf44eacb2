#pragma once
// Sample buffers as a capture session delivers them.

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <vector>

#include "base/calendar_date.h"
#include "platform/sample_buffer.h"
#include "support/dv_frames.h"

namespace zq::test {

/// The `mType` of the system's timecodes.
inline std::uint32_t timecodeTypeOf(DVSystem system) {
  return system == DVSystem::pal625_50 ? 1 : 2;
}

/// A timecode of the system, from a count of whole frames.
inline SMPTETime timecodeAtFrame(DVSystem system, int count) {
  const int rate = timebaseOf(system);
  const int seconds = count / rate;
  return timecodeOf(seconds / 3600, seconds / 60 % 60, seconds % 60, count % rate, timecodeTypeOf(system));
}

/// 15 July 2004, 13:00:00 and some seconds, up to some hours.
inline StampDateTime dateAt(int seconds) {
  const int second = 13 * 3600 + seconds;
  return {2004, 7, 15, second / 3600, second / 60 % 60, second % 60};
}

inline CalendarDate calendarDateOf(const StampDateTime& when) {
  return {when.year, when.month, when.day, when.hours, when.minutes, when.seconds};
}

inline DateValue dateValueAt(int seconds) {
  return std::make_shared<const CalendarDate>(calendarDateOf(dateAt(seconds)));
}

/// One frame to make. Frames that differ in `id` differ in their last picture bytes.
struct FrameRecipe {
  DVSystem system = DVSystem::pal625_50;
  std::optional<SMPTETime> timecode = std::nullopt;
  std::optional<StampDateTime> date = std::nullopt;
  std::uint32_t id = 0;
  platform::SceneChangeType change = platform::SceneChangeType::none;
  std::optional<DVAspectRatio> aspect = std::nullopt;
};

/// Made once a system: the skeleton is most of the work.
inline FrameBytes frameBytesOf(const FrameRecipe& recipe) {
  static const std::map<DVSystem, FrameBytes> skeletons{{DVSystem::pal625_50, makeFrameBytes(DVSystem::pal625_50)},
                                                        {DVSystem::ntsc525_60, makeFrameBytes(DVSystem::ntsc525_60)}};
  FrameBytes frame = skeletons.at(recipe.system);
  FrameStamp stamp;
  stamp.timecode = recipe.timecode;
  stamp.dateTime = recipe.date;
  stamp.aspect = recipe.aspect;
  stampFrame(frame, stamp);
  for (std::size_t i = 0; i < 4; ++i) frame[frame.size() - 4 + i] = static_cast<std::uint8_t>(recipe.id >> (8 * i));
  return frame;
}

/// The `id` of a frame that frameBytesOf() made.
inline std::uint32_t frameIdOf(std::span<const std::uint8_t> frame) {
  std::uint32_t id = 0;
  for (std::size_t i = 0; i < 4; ++i) id |= std::uint32_t{frame[frame.size() - 4 + i]} << (8 * i);
  return id;
}

inline platform::QTSampleBuffer bufferOf(const FrameBytes& bytes) {
  platform::QTSampleBuffer buffer;
  buffer.formatDescription = {platform::QTMediaTypeVideo, platform::fourCharCode("dvcp")};
  buffer.bytesForAllSamples = SharedBytes::copyOf(bytes);
  return buffer;
}

/// The timecode attribute is what the frame carries, or nothing.
inline platform::QTSampleBuffer bufferOf(const FrameRecipe& recipe) {
  platform::QTSampleBuffer buffer = bufferOf(frameBytesOf(recipe));
  if (recipe.timecode) buffer.smpteTime = valueWithSMPTETime(*recipe.timecode);
  buffer.sceneChangeType = recipe.change;
  return buffer;
}

/// A video buffer of this many zero bytes.
inline platform::QTSampleBuffer bufferOfLength(std::size_t length) {
  return bufferOf(FrameBytes(length));
}

/// The frames of a file that holds frames of one system end to end; throws when it cannot be read.
inline std::vector<std::uint32_t> frameIdsInFile(const std::filesystem::path& path,
                                                 DVSystem system = DVSystem::pal625_50) {
  std::vector<std::uint32_t> ids;
  for (const SharedBytes& frame : framesOf(path, system)) ids.push_back(frameIdOf(frame.bytes()));
  return ids;
}

}  // namespace zq::test
