#pragma once
// What paints a slider, and what of its settings Qt's own slider has no place for.

#include <QRectF>
#include <optional>

class QPainter;

namespace zq {

class ZQAccurateSlider;

/// Range, value, tick marks, orientation and whether it is enabled are the slider's own, so they outlive any exchange
/// of cells. This one is the platform's, and leaves the painting to Qt. Main thread only.
class PlainSliderCell {
 public:
  struct Settings {
    bool allowsTickMarkValuesOnly = false;
    /// 0 when it is told by Qt's interval only.
    int numberOfTickMarks = 0;
    /// What the ends of the slider's range of steps stand for; where not set, the numbers of the steps.
    std::optional<double> minValue;
    std::optional<double> maxValue;
  };

  virtual ~PlainSliderCell() = default;

  virtual bool isSkinned() const { return false; }
  /// Rectangles in the slider's coordinates.
  virtual void drawBarInside(QPainter& /*painter*/, const QRectF& /*track*/) const {}
  virtual void drawKnob(QPainter& /*painter*/, const QRectF& /*knob*/, const ZQAccurateSlider& /*view*/) const {}

  /// After a press of the mouse: whether a drag of the knob began.
  virtual bool startTrackingInView(const ZQAccurateSlider& view);
  virtual void stopTracking() {}

  const Settings& settings() const { return settings_; }
  Settings& settings() { return settings_; }

 private:
  Settings settings_;
};

}  // namespace zq
