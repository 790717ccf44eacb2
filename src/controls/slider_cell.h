#pragma once
// Paints a slider: a bar of three slices, and the knob.

#include "controls/plain_slider_cell.h"

namespace zq {

class ZQAccurateSliderCell : public PlainSliderCell {
 public:
  bool isSkinned() const override { return true; }
  void drawBarInside(QPainter& painter, const QRectF& track) const override;
  void drawKnob(QPainter& painter, const QRectF& knob, const ZQAccurateSlider& view) const override;

  bool startTrackingInView(const ZQAccurateSlider& view) override;
  void stopTracking() override { isDraggingKnob_ = false; }
  bool isDraggingKnob() const { return isDraggingKnob_; }

 private:
  bool isDraggingKnob_ = false;
};

}  // namespace zq
