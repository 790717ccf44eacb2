#include "views/binding_area_view.h"

#include <QPaintEvent>
#include <QPainter>
#include <QPen>
#include <QVarLengthArray>
#include <mutex>
#include <utility>

#include "views/replace_object.h"
#include "views/view_coordinates.h"

namespace zq {
namespace {

constexpr float kMargin = 2;  // Left and right of a band, so that neighbours stay apart.
constexpr double kLineWidth = 0.5;
constexpr double kMiterLimit = 10;

struct Colors {
  QColor firstOutline = Qt::black;
  QColor marked = QColor::fromRgbF(0.439F, 0.576F, 0.737F, 0.8F);
  QColor active = QColor::fromRgbF(1.0F, 0.922F, 0.549F, 0.8F);
  QColor fill = QColor::fromRgbF(0.4F, 0.4F, 0.4F, 0.5F);
};

const Colors& colors() {
  static const Colors made;
  return made;
}

/// Where neither view has laid the clip out, the margins would make a band of the corner.
bool isLaidOut(const ZQACClip& clip) {
  return clip.posInTimeline() != platform::Rect{} || clip.posterImagePos() != platform::Rect{};
}

/// On the stack: there may be tens of thousands.
using Band = QVarLengthArray<QPointF, 16>;

/// From the clip's place in the timeline, at the top, to its picture, at the bottom.
Band bandOf(const ZQACClip& clip, const QRectF& bounds) {
  const platform::Rect top = inset(clip.posInTimeline(), kMargin, 0);
  const platform::Rect bottom = inset(clip.posterImagePos(), kMargin, 0);
  return {{top.x, bounds.top()},
          {double{top.x} + top.width, bounds.top()},
          {double{bottom.x} + bottom.width, bounds.bottom()},
          {bottom.x, bounds.bottom()}};
}

QPointF crossing(const QPointF& one, const QPointF& other, double x) {
  const double part = (x - one.x()) / (other.x() - one.x());
  return {x, one.y() + part * (other.y() - one.y())};
}

/// What of the band lies on one side of a vertical line: right of it where `side` is 1, left of it where it is -1.
Band cut(const Band& band, double x, double side) {
  Band rest;
  for (qsizetype i = 0; i < band.size(); ++i) {
    const QPointF& from = band[i];
    const QPointF& to = band[(i + 1) % band.size()];
    const bool fromIsIn = side * (from.x() - x) >= 0;
    const bool toIsIn = side * (to.x() - x) >= 0;
    if (fromIsIn) rest.append(from);
    if (fromIsIn != toIsIn) rest.append(crossing(from, to, x));
  }
  return rest;
}

/// The strip may be a thousand times as wide as the view, and painters take long for what they do not show. There is
/// room for the outline of the cut, which is not to be seen.
Band inSight(const Band& band, const QRectF& bounds) {
  constexpr double kRoom = kLineWidth * kMiterLimit;
  return cut(cut(band, bounds.left() - kRoom, 1), bounds.right() + kRoom, -1);
}

void drawBand(QPainter& painter, const ZQACClip& clip, const QPen& outline, const QRectF& bounds) {
  if (!isLaidOut(clip)) return;
  const Band band = inSight(bandOf(clip, bounds), bounds);
  if (band.isEmpty()) return;
  painter.setPen(outline);
  painter.setBrush(Qt::NoBrush);
  painter.drawPolygon(band.data(), static_cast<int>(band.size()));
  painter.setPen(Qt::NoPen);
  painter.setBrush(colors().fill);
  painter.drawPolygon(band.data(), static_cast<int>(band.size()), Qt::WindingFill);
}

}  // namespace

ZQACBindingAreaView::ZQACBindingAreaView(platform::Runtime& runtime, QWidget* parent)
    : QWidget(parent),
      mutex_(runtime.makeMutex("binding area")),
      mainLoop_(runtime.mainLoop()),
      mainThread_(mainLoop_) {}

void ZQACBindingAreaView::setActiveSequence(SequenceValue sequence) {
  if (replaceObject(*mutex_, activeSequence_, std::move(sequence))) postRefresh();
}

void ZQACBindingAreaView::setActiveClip(ClipValue clip) {
  replaceObject(*mutex_, activeClip_, std::move(clip));
}

void ZQACBindingAreaView::refresh() {
  if (!mainLoop_.isCurrent()) {
    postRefresh();
    return;
  }
  update();
}

void ZQACBindingAreaView::postRefresh() {
  mainThread_.post([this] { refresh(); });
}

SequenceValue ZQACBindingAreaView::activeSequence() const {
  const std::lock_guard guard(*mutex_);
  return activeSequence_;
}

ClipValue ZQACBindingAreaView::activeClip() const {
  const std::lock_guard guard(*mutex_);
  return activeClip_;
}

void ZQACBindingAreaView::paintEvent(QPaintEvent* /*event*/) {
  const SequenceValue sequence = activeSequence();
  if (!sequence) return;
  QPainter painter(this);
  painter.setClipRect(rect());
  painter.setRenderHint(QPainter::Antialiasing);
  drawBands(painter, *sequence, activeClip().get());
}

// The outline comes first: the coloured edges of marked and active clips show through the grey. A clip that is neither
// is outlined in what was the colour before it: the grey of the previous band, and black where there is none. Clips in
// the trash are drawn as all others.
void ZQACBindingAreaView::drawBands(QPainter& painter, const ZQACSequence& sequence, const ZQACClip* active) const {
  QPen pen(colors().firstOutline, kLineWidth, Qt::SolidLine, Qt::FlatCap, Qt::SvgMiterJoin);
  pen.setMiterLimit(kMiterLimit);
  for (const ClipValue& clip : sequence.allClips()) {
    if (clip->isRecapture()) pen.setColor(colors().marked);
    if (clip.get() == active) pen.setColor(colors().active);
    drawBand(painter, *clip, pen, rect());
    pen.setColor(colors().fill);
  }
}

}  // namespace zq
