#pragma once
// A tape, scene by scene, as recipes of its frames.

#include <fstream>
#include <optional>
#include <string>
#include <vector>

#include "support/capture_buffers.h"

namespace zq::test {

/// What a camcorder records between two presses of its button.
struct SceneRecipe {
  int frames = 0;
  /// Of the first frame; later frames run on by the frame rate. None leaves them undated.
  std::optional<int> date;
  /// A count of frames; none leaves the frames without one.
  std::optional<int> timecode;
  DVSystem system = DVSystem::pal625_50;
  /// The timecode stands still.
  bool constantTimecode = false;
};

class TapeRecipe {
 public:
  TapeRecipe(std::initializer_list<SceneRecipe> scenes) {
    for (const SceneRecipe& scene : scenes) add(scene);
  }

  void add(const SceneRecipe& scene) {
    for (int i = 0; i < scene.frames; ++i) {
      FrameRecipe frame;
      frame.system = scene.system;
      if (scene.date) frame.date = dateAt(*scene.date + i / timebaseOf(scene.system));
      if (scene.timecode) {
        frame.timecode = timecodeAtFrame(scene.system, *scene.timecode + (scene.constantTimecode ? 0 : i));
      }
      add(frame);
    }
  }

  /// The frame's id becomes its place on the tape.
  void add(FrameRecipe frame) {
    frame.id = static_cast<std::uint32_t>(frames_.size());
    frames_.push_back(frameBytesOf(frame));
  }

  const std::vector<FrameBytes>& frames() const { return frames_; }

  void writeTo(const std::string& path) const {
    std::ofstream file(path, std::ios::binary);
    for (const FrameBytes& frame : frames_) {
      file.write(reinterpret_cast<const char*>(frame.data()), std::ssize(frame));
    }
    if (!file.flush()) throw std::runtime_error("cannot write " + path);
  }

 private:
  std::vector<FrameBytes> frames_;
};

/// first, first + 1, ... last
inline std::vector<std::uint32_t> idsFromTo(std::uint32_t first, std::uint32_t last) {
  std::vector<std::uint32_t> ids;
  for (std::uint32_t id = first; id <= last; ++id) ids.push_back(id);
  return ids;
}

}  // namespace zq::test
