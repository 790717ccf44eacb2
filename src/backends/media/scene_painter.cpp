#include "backends/media/scene_painter.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <numbers>

#include "backends/media/pixel_font.h"

namespace zq::media {
namespace {

// A picture, in parts of its size:
//
//   +------------------------------------------+
//   | eight colour bars                 flash  |
//   |  stripes in the scene's colour, moving   |
//   |      (ball, to and fro)                  |
//   |  +------------------------------------+  |
//   |  |  SCENE 2  FRAME 0123               |  |
//   |  |  00:00:04:23                       |  |
//   |  |  2004-07-15 13:30:45               |  |
//   +------------------------------------------+

struct Colour {
  std::uint8_t y = 0;
  std::uint8_t cb = 128;
  std::uint8_t cr = 128;
};

struct Rectangle {
  int x = 0;
  int y = 0;
  int width = 0;
  int height = 0;
};

constexpr Colour kWhite{235, 128, 128};
constexpr Colour kGrey{170, 128, 128};
constexpr Colour kPanel{28, 128, 128};

// 75 % bars: white, yellow, cyan, green, magenta, red, blue, black.
constexpr std::array<Colour, 8> kBars{{{180, 128, 128},
                                       {162, 44, 142},
                                       {131, 156, 44},
                                       {112, 72, 58},
                                       {84, 184, 198},
                                       {65, 100, 212},
                                       {35, 212, 114},
                                       {16, 128, 128}}};

constexpr int kStripePeriod = 144;

std::uint8_t* row(const PicturePlanes& planes, std::size_t plane, int y) {
  return planes.data[plane] + std::ptrdiff_t{y} * planes.stride[plane];
}

void fillRectangle(const PicturePlanes& planes, const Rectangle& area, const Colour& colour) {
  for (int y = area.y; y < area.y + area.height; ++y) {
    std::memset(row(planes, 0, y) + area.x, colour.y, static_cast<std::size_t>(area.width));
  }
  const int left = area.x >> planes.chromaShiftX;
  const int right = (area.x + area.width) >> planes.chromaShiftX;
  const int bottom = (area.y + area.height) >> planes.chromaShiftY;
  for (int y = area.y >> planes.chromaShiftY; y < bottom; ++y) {
    std::memset(row(planes, 1, y) + left, colour.cb, static_cast<std::size_t>(right - left));
    std::memset(row(planes, 2, y) + left, colour.cr, static_cast<std::size_t>(right - left));
  }
}

void drawBars(const PicturePlanes& planes) {
  const int count = static_cast<int>(kBars.size());
  for (int i = 0; i < count; ++i) {
    const int left = planes.width * i / count;
    const int right = planes.width * (i + 1) / count;
    fillRectangle(planes, {left, 0, right - left, planes.height / 6}, kBars[static_cast<std::size_t>(i)]);
  }
}

/// As slices one line high. Round on the screen, where a pixel is not as wide as it is high.
void drawBall(const PicturePlanes& planes, int centreX, int centreY, int radius, const Colour& colour) {
  const int step = 1 << planes.chromaShiftY;
  for (int dy = -radius; dy < radius; dy += step) {
    const double half = std::sqrt(static_cast<double>(radius * radius - dy * dy));
    const int width = static_cast<int>(half * planes.width * 3 / (planes.height * 4));
    fillRectangle(planes, {centreX - width, centreY + dy, 2 * width, step}, colour);
  }
}

/// In luma only: the ground that text stands on is grey.
void drawGlyph(const PicturePlanes& planes, int x, int y, int scale, const Glyph& glyph, std::uint8_t luma) {
  for (int line = 0; line < kGlyphHeight * scale; ++line) {
    std::uint8_t* const start = row(planes, 0, y + line) + x;
    const unsigned bits = glyph[static_cast<std::size_t>(line / scale)];
    for (int dot = 0; dot < kGlyphWidth * scale; ++dot) {
      if ((bits >> (kGlyphWidth - 1 - dot / scale) & 1U) != 0) start[dot] = luma;
    }
  }
}

/// What does not fit in the picture is left out.
void drawText(const PicturePlanes& planes, int x, int y, int scale, const std::string& text, const Colour& colour) {
  for (const char character : text) {
    if (x + kGlyphWidth * scale > planes.width) return;
    drawGlyph(planes, x, y, scale, glyphFor(character), colour.y);
    x += (kGlyphWidth + 1) * scale;
  }
}

void drawCaption(const PicturePlanes& planes, const PictureContent& content) {
  const int top = planes.height * 9 / 16 & ~15;
  const Rectangle panel{40, top, planes.width - 80, planes.height - top - 48};
  fillRectangle(planes, panel, kPanel);
  constexpr int kGap = 18;
  constexpr int kTextHeight = (5 + 6 + 4) * kGlyphHeight + 2 * kGap;
  const int x = panel.x + 24;
  int y = panel.y + (panel.height - kTextHeight) / 2;
  drawText(planes, x, y, 5, content.title, kWhite);
  y += 5 * kGlyphHeight + kGap;
  drawText(planes, x, y, 6, content.timecode, kWhite);
  y += 6 * kGlyphHeight + kGap;
  drawText(planes, x, y, 4, content.date, kGrey);
}

/// 0 to 1 and back, once in `period`.
double toAndFro(int frame, int period) {
  const int phase = frame % period;
  const int half = period / 2;
  return static_cast<double>(phase < half ? phase : period - phase) / half;
}

}  // namespace

void ScenePainter::paint(const PictureContent& content, const PicturePlanes& planes) {
  if (content.scene != scene_) prepareScene(content.scene, planes);
  const int shift = content.frame * 6 % kStripePeriod;
  for (int y = 0; y < planes.height; ++y) {
    const int offset = (shift + y / 2) % kStripePeriod;
    std::memcpy(row(planes, 0, y), stripes_.data() + offset, static_cast<std::size_t>(planes.width));
  }
  for (std::size_t plane = 1; plane < 3; ++plane) {
    const auto width = static_cast<std::size_t>(planes.width >> planes.chromaShiftX);
    for (int y = 0; y < planes.height >> planes.chromaShiftY; ++y) {
      std::memset(row(planes, plane, y), sceneChroma_[plane - 1], width);
    }
  }
  drawBars(planes);
  if (content.beep) fillRectangle(planes, {planes.width - 112, planes.height / 6 + 16, 64, 64}, kWhite);
  const int radius = 40;
  const int travel = planes.width - 2 * radius - 80;
  const int x = 40 + radius + static_cast<int>(travel * toAndFro(content.frame, content.framesPerSecond * 4));
  // The opposite hue of the scene's own stands out in every scene.
  const Colour ball{190, static_cast<std::uint8_t>(256 - sceneChroma_[0]),
                    static_cast<std::uint8_t>(256 - sceneChroma_[1])};
  drawBall(planes, x & ~3, planes.height * 3 / 8 & ~3, radius, ball);
  drawCaption(planes, content);
}

void ScenePainter::prepareScene(int scene, const PicturePlanes& planes) {
  scene_ = scene;
  // Turning by the golden angle makes any two scenes near each other differ in colour.
  const double hue = 0.9 + scene * std::numbers::pi * (3.0 - std::sqrt(5.0));
  sceneChroma_ = {static_cast<std::uint8_t>(128 + std::lround(44 * std::cos(hue))),
                  static_cast<std::uint8_t>(128 + std::lround(44 * std::sin(hue)))};
  stripes_.resize(static_cast<std::size_t>(planes.width) + kStripePeriod);
  for (std::size_t x = 0; x < stripes_.size(); ++x) {
    const double phase = 2 * std::numbers::pi * static_cast<double>(x) / kStripePeriod;
    stripes_[x] = static_cast<std::uint8_t>(96 + std::lround(24 * std::sin(phase)));
  }
}

}  // namespace zq::media
