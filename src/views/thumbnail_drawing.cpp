#include "views/thumbnail_drawing.h"

#include <QImage>
#include <QPainter>

#include "views/poster_size.h"
#include "views/view_coordinates.h"

namespace zq {
namespace {

constexpr float kPosterWidth = ZQACPosterImageWidth;
constexpr float kPosterHeight = ZQACPosterImageHeight;
/// What is below the posters: the progress bars, and a gap.
constexpr float kPosterBottom = 9;
constexpr float kBarInset = 2;
constexpr float kProgressHeight = 6;
constexpr float kFrameLineWidth = 2;

QColor deviceWhite(float white, float alpha) {
  return QColor::fromRgbF(white, white, white, alpha);
}

const QColor kMarked = QColor::fromRgbF(0.439F, 0.576F, 0.737F, 0.8F);
const QColor kActive = QColor::fromRgbF(1.0F, 0.922F, 0.549F, 1.0F);
/// Over the clips that are not to be recaptured.
const QColor kVeil = deviceWhite(0.5F, 0.6F);

}  // namespace

ThumbnailDrawing::ThumbnailDrawing(QPainter& painter, PosterCache& posters, ThumbnailStripState state)
    : painter_(painter),
      posters_(posters),
      state_(std::move(state)),
      progressBars_(painter, state_.bounds.height),
      pixels_(painter),
      scale_(pixelsPerPoint(painter)),
      bandColor_(deviceWhite(0.05F, state_.transparency)) {}

void ThumbnailDrawing::drawRect(const platform::Rect& area) {
  painter_.save();
  painter_.setRenderHint(QPainter::Antialiasing, false);
  painter_.setRenderHint(QPainter::SmoothPixmapTransform);
  if (state_.activeSequence) drawClips(area);
  if (state_.activeClip) frameActiveClip();
  drawEdgeBands(area);
  painter_.restore();
}

// Intended: the strip ends at the first clip in the trash. It and those after it keep the rectangles that they had.
void ThumbnailDrawing::drawClips(const platform::Rect& area) {
  const platform::Rect& bounds = state_.bounds;
  float x = state_.firstPosterImagePosX;
  for (const ClipValue& clip : state_.activeSequence->allClips()) {
    if (clip->isInTrash()) return;
    const platform::Rect poster{x, bounds.y + kPosterBottom, kPosterWidth, kPosterHeight};
    const platform::Rect bar{x + kBarInset, bounds.y, kPosterWidth - 2 * kBarInset, kProgressHeight};
    clip->setPosterImagePos(poster);
    clip->setProgressBar(bar);
    if (meets(poster, area)) drawPoster(*clip, poster);
    if (meets(bar, area)) {
      progressBars_.drawProgressBarInClip(*clip, state_.clipBeingRecap.get(), state_.cursorTimecode);
    }
    x += kPosterWidth;
  }
}

void ThumbnailDrawing::drawPoster(const ZQACClip& clip, const platform::Rect& place) {
  const QImage picture = posters_.picture(clip.posterImage(), scale_, clip.clipName());
  if (!picture.isNull()) painter_.drawImage(onWholePixels(place), picture);
  if (clip.isRecapture()) {
    strokeWithoutAntialiasing(place, kMarked);
  } else {
    fill(place, kVeil);
  }
}

// A clip that was never laid out has an empty rectangle, which no line goes around.
void ThumbnailDrawing::frameActiveClip() {
  const platform::Rect place = state_.activeClip->posterImagePos();
  if (place.width > 0 && place.height > 0) strokeWithoutAntialiasing(place, kActive);
}

void ThumbnailDrawing::drawEdgeBands(const platform::Rect& area) {
  const platform::Rect& right = state_.rollingToLeftArea.rect();
  const platform::Rect& left = state_.rollingToRightArea.rect();
  if (meets(right, area) && state_.willRollToLeft) {
    fill(right, bandColor_);
    drawRightArrow();
  }
  if (meets(left, area) && state_.willRollToRight) {
    fill(left, bandColor_);
    drawLeftArrow();
  }
}

void ThumbnailDrawing::drawLeftArrow() {
  fillTriangle({point(0, 30), point(10, 20), point(10, 40)});
}

void ThumbnailDrawing::drawRightArrow() {
  const float end = state_.bounds.width;
  fillTriangle({point(end - 10, 20), point(end, 30), point(end - 10, 40)});
}

// In the band's own colour: an arrow shows by being laid over the band once more.
void ThumbnailDrawing::fillTriangle(const std::array<QPointF, 3>& corners) {
  painter_.setRenderHint(QPainter::Antialiasing, !strokedWithoutAntialiasing_);
  painter_.setPen(Qt::NoPen);
  painter_.setBrush(bandColor_);
  painter_.drawConvexPolygon(corners.data(), static_cast<int>(corners.size()));
  painter_.setRenderHint(QPainter::Antialiasing, false);
}

void ThumbnailDrawing::fill(const platform::Rect& rect, const QColor& color) {
  painter_.fillRect(onWholePixels(rect), color);
}

// The four sides of the line as areas that do not overlap: a translucent line is as dark at its corners as elsewhere.
// Antialiasing stays off for the arrows that are drawn after it.
void ThumbnailDrawing::strokeWithoutAntialiasing(const platform::Rect& rect, const QColor& color) {
  strokedWithoutAntialiasing_ = true;
  const platform::Rect outer = inset(rect, -kFrameLineWidth / 2, -kFrameLineWidth / 2);
  const platform::Rect inner = inset(rect, kFrameLineWidth / 2, kFrameLineWidth / 2);
  fill({outer.x, outer.y, outer.width, kFrameLineWidth}, color);
  fill({outer.x, inner.y + inner.height, outer.width, kFrameLineWidth}, color);
  fill({outer.x, inner.y, kFrameLineWidth, inner.height}, color);
  fill({inner.x + inner.width, inner.y, kFrameLineWidth, inner.height}, color);
}

// A strip that glides stops at parts of a pixel on its way. Its posters are drawn on whole ones, where they are as
// sharp as at rest, and are copied instead of resampled.
QRectF ThumbnailDrawing::onWholePixels(const platform::Rect& rect) const {
  return pixels_.snapped(toQt(rect, state_.bounds.height));
}

QPointF ThumbnailDrawing::point(float x, float y) const {
  return toQt(x, y, state_.bounds.height);
}

}  // namespace zq
