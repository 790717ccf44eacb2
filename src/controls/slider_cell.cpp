#include "controls/slider_cell.h"

#include <QPainter>

#include "controls/slider.h"
#include "skin/skin_image.h"

namespace zq {

namespace {

constexpr qreal kCapWidth = 4;
constexpr qreal kBarHeight = 6;
constexpr qreal kBarTop = 3;

SkinImage named(const char* name) {
  return imageNamedInFrameworkForClass(name, "ZQAccurateSliderCell");
}

struct Images {
  SkinImage left = named("sliderTrackLeft");
  SkinImage middle = named("sliderTrackMiddle");
  SkinImage right = named("sliderTrackRight");
  SkinImage knob = named("sliderKnob");
  SkinImage knobAvecTick = named("sliderKnobAvecTick");
};

const Images& images() {
  static const Images all;
  return all;
}

}  // namespace

void ZQAccurateSliderCell::drawBarInside(QPainter& painter, const QRectF& track) const {
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing, false);
  const qreal y = track.y() + kBarTop;
  images().left.draw(painter, {track.x(), y, kCapWidth, kBarHeight});
  images().middle.draw(painter, {track.x() + kCapWidth, y, track.width() - 2 * kCapWidth, kBarHeight});
  images().right.draw(painter, {track.x() + track.width() - kCapWidth, y, kCapWidth, kBarHeight});
  painter.restore();
}

void ZQAccurateSliderCell::drawKnob(QPainter& painter, const QRectF& knob, const ZQAccurateSlider& view) const {
  (view.numberOfTickMarks() > 0 ? images().knobAvecTick : images().knob).draw(painter, knob);
}

bool ZQAccurateSliderCell::startTrackingInView(const ZQAccurateSlider& view) {
  isDraggingKnob_ = PlainSliderCell::startTrackingInView(view);
  return isDraggingKnob_;
}

}  // namespace zq
