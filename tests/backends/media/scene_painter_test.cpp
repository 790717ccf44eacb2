#include "backends/media/scene_painter.h"

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace zq::media {
namespace {

/// Planes of exactly the size of a picture: what paints beyond one is found by AddressSanitizer.
class Canvas {
 public:
  Canvas(int height, int chromaShiftX, int chromaShiftY) {
    planes_.width = 720;
    planes_.height = height;
    planes_.chromaShiftX = chromaShiftX;
    planes_.chromaShiftY = chromaShiftY;
    for (std::size_t i = 0; i < 3; ++i) {
      const int width = i == 0 ? 720 : 720 >> chromaShiftX;
      const int lines = i == 0 ? height : height >> chromaShiftY;
      memory_[i].resize(static_cast<std::size_t>(width) * static_cast<std::size_t>(lines));
      planes_.data[i] = memory_[i].data();
      planes_.stride[i] = width;
    }
  }

  const PicturePlanes& planes() const { return planes_; }
  const std::vector<std::uint8_t>& luma() const { return memory_[0]; }

 private:
  std::array<std::vector<std::uint8_t>, 3> memory_;
  PicturePlanes planes_;
};

PictureContent contentOf(int scene, int frame) {
  PictureContent content;
  content.scene = scene;
  content.frame = frame;
  content.title = "SCENE";
  return content;
}

TEST(ScenePainter, StaysInThePictureWhateverTheTextIs) {
  ScenePainter painter;
  for (const Canvas& canvas : {Canvas(576, 1, 1), Canvas(480, 2, 0)}) {
    PictureContent content = contentOf(1, 0);
    content.title = content.timecode = content.date = std::string(60, 'W');
    painter.paint(content, canvas.planes());
    const std::size_t lastTextLine = static_cast<std::size_t>(canvas.planes().height) * 3 / 4;
    // No letter of a line comes back on its left.
    for (std::size_t y = lastTextLine - 100; y < lastTextLine; ++y) EXPECT_NE(canvas.luma()[y * 720], 235) << y;
  }
}

TEST(ScenePainter, PaintsEveryFrameOfALongSceneInsideThePicture) {
  ScenePainter painter;
  Canvas canvas(480, 2, 0);
  for (int frame = 0; frame < 200; ++frame) painter.paint(contentOf(frame % 7, frame * 1001), canvas.planes());
}

TEST(ScenePainter, DrawsDigitsThatDiffer) {
  ScenePainter painter;
  std::vector<std::vector<std::uint8_t>> pictures;
  for (char digit = '0'; digit <= '9'; ++digit) {
    Canvas canvas(576, 1, 1);
    PictureContent content = contentOf(1, 0);
    content.timecode = std::string(1, digit);
    painter.paint(content, canvas.planes());
    for (const auto& other : pictures) EXPECT_NE(other, canvas.luma()) << digit;
    pictures.push_back(canvas.luma());
  }
}

}  // namespace
}  // namespace zq::media
