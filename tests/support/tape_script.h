#pragma once
// Tape images written from a script of scenes, with the truth about each frame kept beside them.

#include <fstream>
#include <optional>
#include <string>
#include <vector>

#include "support/dv_frames.h"
#include "timecode/timecode_utils.h"

namespace zq::test {

struct ScriptScene {
  int frames = 25;
  std::optional<StampDateTime> date;
  /// The first frame's; without one the scene has no timecode.
  std::optional<SMPTETime> timecode;
  DVSystem system = DVSystem::pal625_50;
  /// The clock runs on through the scene, in seconds; off keeps the date still.
  bool clockRuns = true;
};

struct ScriptFrame {
  FrameBytes bytes;
  int scene = 0;
};

/// Each frame differs from every other: its number is written into a picture block.
inline std::vector<ScriptFrame> framesOf(const std::vector<ScriptScene>& scenes) {
  std::vector<ScriptFrame> frames;
  for (std::size_t s = 0; s < scenes.size(); ++s) {
    const ScriptScene& scene = scenes[s];
    std::optional<SMPTETime> timecode = scene.timecode;
    if (timecode) timecode->mType = scene.system == DVSystem::pal625_50 ? 1 : 2;
    for (int i = 0; i < scene.frames; ++i) {
      FrameStamp stamp;
      stamp.timecode = timecode;
      stamp.dateTime = scene.date;
      if (stamp.dateTime && scene.clockRuns) {
        const int seconds = stamp.dateTime->seconds + i / timebaseOf(scene.system);
        stamp.dateTime->minutes += seconds / 60;
        stamp.dateTime->seconds = seconds % 60;
      }
      FrameBytes bytes = makeFrameBytes(scene.system, stamp);
      const std::size_t number = frames.size();
      for (std::size_t byte = 0; byte < 4; ++byte)
        bytes[7 * 80 + 10 + byte] = static_cast<std::uint8_t>(number >> (8 * byte));
      frames.push_back({std::move(bytes), static_cast<int>(s)});
      if (timecode) timecode = ZQACTimecodeUtils::addNbFrameToTimecode(1, *timecode);
    }
  }
  return frames;
}

inline void writeTape(const std::string& path, const std::vector<ScriptFrame>& frames) {
  std::ofstream file(path, std::ios::binary);
  for (const ScriptFrame& frame : frames) {
    file.write(reinterpret_cast<const char*>(frame.bytes.data()), static_cast<std::streamsize>(frame.bytes.size()));
  }
}

/// The bytes of frames `first` to `last`, the last not included.
inline std::string bytesOf(const std::vector<ScriptFrame>& frames, std::size_t first, std::size_t last) {
  std::string bytes;
  for (std::size_t i = first; i < last; ++i) bytes.append(frames[i].bytes.begin(), frames[i].bytes.end());
  return bytes;
}

}  // namespace zq::test
