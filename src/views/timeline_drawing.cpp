#include "views/timeline_drawing.h"

#include <QColor>
#include <QPainter>
#include <cmath>
#include <utility>

#include "skin/skin_image.h"
#include "views/view_coordinates.h"

namespace zq {
namespace {

constexpr char kClassName[] = "ZQACTimelineView";

constexpr float kFrameSide = 9;       // Width of the left and the right picture of the frame, in points.
constexpr float kTrackMargin = 3;     // Above and below the track.
constexpr float kSequenceMargin = 3;  // Left and right in a sequence.
constexpr float kLineWidth = 2;       // Of separators and the cursor.
constexpr float kCursorShortening = 2;

struct Pictures {
  SkinImage left = imageNamedInFrameworkForClass("timelineLeft", kClassName);
  SkinImage middle = imageNamedInFrameworkForClass("timelineMiddle", kClassName);
  SkinImage right = imageNamedInFrameworkForClass("timelineRight", kClassName);
  SkinImage shadow = imageNamedInFrameworkForClass("timelineShadow", kClassName);
};

/// For all timelines.
const Pictures& pictures() {
  static const Pictures loaded;
  return loaded;
}

struct Colors {
  QColor sequence = QColor::fromRgbF(0.231F, 0.231F, 0.231F);
  QColor marked = QColor::fromRgbF(0.306F, 0.38F, 0.467F);
  QColor active = QColor::fromRgbF(1.0F, 0.922F, 0.549F);
  QColor separator = QColor::fromRgbF(0.098F, 0.098F, 0.098F);
  QColor cursor = QColor::fromRgbF(1.0F, 0.0F, 0.0F);
};

const Colors& colors() {
  static const Colors made;
  return made;
}

// The bar's scale is computed in single precision, that of the clips in double precision. A tape without frames has no
// scale: nothing on it has a width.
float barScale(float barWidth, const ZQACTape& tape) {
  const std::int32_t frames = tape.totalDurationInFrame();
  return frames == 0 ? 0 : (barWidth - 2 * kFrameSide) / static_cast<float>(frames);
}
float clipScale(float barWidth, const ZQACTape& tape) {
  const std::int32_t frames = tape.totalDurationInFrame();
  return frames == 0 ? 0 : static_cast<float>((double{barWidth} - 2 * kFrameSide) / frames);
}

/// Lays records side by side. Each begins at a whole point while its width keeps its fraction, so that neighbours may
/// overlap by up to a point: the pickers and the binding band reckon with just these rectangles.
class Row {
 public:
  Row(float x, float y, float height) : x_(x), y_(std::trunc(y)), height_(height) {}

  platform::Rect next(std::int32_t frames, float scale) {
    x_ = std::trunc(x_);
    const platform::Rect rect{x_, y_, static_cast<float>(frames) * scale, height_};
    x_ += rect.width;
    return rect;
  }

 private:
  float x_;
  const float y_;
  const float height_;
};

}  // namespace

TimelineDrawing::TimelineDrawing(QPainter& painter, TimelineContents contents)
    : painter_(painter),
      contents_(std::move(contents)),
      pixels_(painter),
      row_(contents_.bounds.width, pixelsPerPoint(painter)) {}

void TimelineDrawing::initialize() {
  pictures();
}

void TimelineDrawing::drawRect(const platform::Rect& area) {
  if (!contents_.tape) return;
  const platform::Rect& bounds = contents_.bounds;
  const platform::Rect track = inset(bounds, kFrameSide, kTrackMargin);

  painter_.save();
  painter_.setClipRect(toQt(bounds, bounds.height), Qt::IntersectClip);
  painter_.setRenderHint(QPainter::Antialiasing, false);
  drawFrame();
  drawSequences(track, area);
  row_.draw(painter_, onWholePixels({bounds.x, track.y, bounds.width, track.height}));
  drawCursorIntersectedRect(contents_.cursorRect, area);
  pictures().shadow.draw(painter_, onWholePixels(track));
  painter_.restore();
}

void TimelineDrawing::drawFrame() {
  const platform::Rect& b = contents_.bounds;
  const platform::Rect left{b.x, b.y, kFrameSide, b.height};
  const platform::Rect middle{kFrameSide, b.y, b.width - 2 * kFrameSide, b.height};
  const platform::Rect right{b.width - kFrameSide, b.y, kFrameSide, b.height};
  pictures().left.draw(painter_, onWholePixels(left));
  pictures().middle.draw(painter_, onWholePixels(middle));
  pictures().right.draw(painter_, onWholePixels(right));
}

QRectF TimelineDrawing::onWholePixels(const platform::Rect& rect) const {
  return pixels_.snapped(toQt(rect, contents_.bounds.height));
}

void TimelineDrawing::drawSequences(const platform::Rect& track, const platform::Rect& area) {
  const float scale = barScale(contents_.bounds.width, *contents_.tape);
  Row row(track.x, track.y, track.height);
  for (const SequenceValue& sequence : contents_.tape->allSequences()) {
    sequence->setPosInTimeline(row.next(sequence->totalDurationInFrame(), scale));
    drawSequenceIntersectedRect(*sequence, area);
  }
}

// The clips begin within the sequence's margin but are as wide as if there were none, so the last one ends beyond the
// sequence's right edge by the margin. Intended: durations are to the same scale along the whole bar.
void TimelineDrawing::drawSequenceIntersectedRect(const ZQACSequence& sequence, const platform::Rect& area) {
  const platform::Rect place = sequence.posInTimeline();
  if (!meets(place, area)) return;
  const platform::Rect inner = inset(place, kSequenceMargin, 0);
  row_.fill(inner.x, inner.x + inner.width, colors().sequence);

  const float scale = clipScale(contents_.bounds.width, *contents_.tape);
  Row row(inner.x, inner.y, inner.height);
  for (const ClipValue& clip : sequence.allClips()) {
    clip->setPosInTimeline(row.next(clip->durationInFrame(), scale));
    drawClipIntersectedRect(*clip, area);
  }
}

void TimelineDrawing::drawClipIntersectedRect(const ZQACClip& clip, const platform::Rect& area) {
  const platform::Rect place = clip.posInTimeline();
  if (!meets(place, area)) return;
  const float right = place.x + place.width;
  if (clip.isRecapture()) row_.fill(place.x, right, colors().marked);
  if (&clip == contents_.activeClip.get()) row_.fill(place.x, right, colors().active);
  row_.fill(right - kLineWidth / 2, right + kLineWidth / 2, colors().separator);
}

/// A line whose ends are cut off square is a rectangle around it. It goes on by parts of a pixel, all else stands on
/// whole ones.
void TimelineDrawing::drawCursorIntersectedRect(const platform::Rect& cursor, const platform::Rect& area) {
  if (!meets(cursor, area)) return;
  const float height = contents_.bounds.height;
  const platform::Rect line{contents_.cursorHeadX - kLineWidth / 2, contents_.cursorHeadY, kLineWidth,
                            height - kCursorShortening};
  painter_.setRenderHint(QPainter::Antialiasing);
  painter_.fillRect(toQt(line, height) & toQt(contents_.bounds, height), colors().cursor);
  painter_.setRenderHint(QPainter::Antialiasing, false);
}

}  // namespace zq
