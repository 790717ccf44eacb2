#pragma once
// Draws the pictures of a made-up tape: moving, of another colour in each scene, and saying what they are.

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace zq::media {

/// The memory of a planar Y'CbCr picture, whose chroma planes are smaller by these powers of two.
struct PicturePlanes {
  std::array<std::uint8_t*, 3> data{};
  std::array<int, 3> stride{};
  int width = 0;
  int height = 0;
  int chromaShiftX = 0;
  int chromaShiftY = 0;
};

/// What one picture shows.
struct PictureContent {
  int scene = 0;
  int frame = 0;
  int framesPerSecond = 25;
  /// Whether the once-a-second beep sounds in this frame; shown as a flash, so that picture and sound can be compared.
  bool beep = false;
  std::string title;
  std::string timecode;
  std::string date;
};

class ScenePainter {
 public:
  void paint(const PictureContent& content, const PicturePlanes& planes);

 private:
  void prepareScene(int scene, const PicturePlanes& planes);

  // Of the scene drawn last.
  int scene_ = -1;
  std::vector<std::uint8_t> stripes_;
  std::array<std::uint8_t, 2> sceneChroma_{};
};

}  // namespace zq::media
