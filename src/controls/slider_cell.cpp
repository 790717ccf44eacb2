#include "controls/slider_cell.h"

#include <QPainter>

#include "controls/slider.h"
#include "skin/three_slices.h"

namespace zq {

namespace {

constexpr qreal kBarCapWidth = 4;
constexpr qreal kBarHeight = 6;
constexpr qreal kBarTop = 3;

const char kSliderClass[] = "ZQAccurateSliderCell";

struct SliderImages {
  ThreeSlices track{"sliderTrackLeft", "sliderTrackMiddle", "sliderTrackRight", kSliderClass};
  SkinImage knob = imageNamedInFrameworkForClass("sliderKnob", kSliderClass);
  SkinImage knobAvecTick = imageNamedInFrameworkForClass("sliderKnobAvecTick", kSliderClass);
};

const SliderImages& sliderImages() {
  static const SliderImages all;
  return all;
}

}  // namespace

void ZQAccurateSliderCell::drawBarInside(QPainter& painter, const QRectF& track) const {
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing, false);
  const QRectF bar(track.x(), track.y() + kBarTop, track.width(), kBarHeight);
  sliderImages().track.drawStretched(painter, bar, kBarCapWidth, kBarCapWidth);
  painter.restore();
}

void ZQAccurateSliderCell::drawKnob(QPainter& painter, const QRectF& knob, const ZQAccurateSlider& view) const {
  (view.numberOfTickMarks() > 0 ? sliderImages().knobAvecTick : sliderImages().knob).draw(painter, knob);
}

bool ZQAccurateSliderCell::startTrackingInView(const ZQAccurateSlider& view) {
  isDraggingKnob_ = PlainSliderCell::startTrackingInView(view);
  return isDraggingKnob_;
}

}  // namespace zq
