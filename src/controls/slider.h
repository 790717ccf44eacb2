#pragma once
// The panels' slider.

#include <QSlider>
#include <memory>

#include "controls/awakes_from_nib.h"
#include "controls/focus_ring.h"
#include "controls/plain_slider_cell.h"

class QStyleOptionSlider;

namespace zq {

/// Keys, mouse, wheel, focus and signals are those of QSlider, which goes in whole steps from minimum() to maximum().
/// `doubleValue` is the same place on a scale from `minValue` to `maxValue`; without these, it is the step. A slider
/// that stands upright keeps the platform's look. Main thread only.
class ZQAccurateSlider : public QSlider, public AwakesFromNib {
  Q_OBJECT
  Q_PROPERTY(double minValue READ minValue WRITE setMinValue)
  Q_PROPERTY(double maxValue READ maxValue WRITE setMaxValue)
  Q_PROPERTY(double doubleValue READ doubleValue WRITE setDoubleValue)
  Q_PROPERTY(int numberOfTickMarks READ numberOfTickMarks WRITE setNumberOfTickMarks)
  Q_PROPERTY(bool allowsTickMarkValuesOnly READ allowsTickMarkValuesOnly WRITE setAllowsTickMarkValuesOnly)

 public:
  using CellClass = std::unique_ptr<PlainSliderCell> (*)();

  explicit ZQAccurateSlider(QWidget* parent = nullptr);

  virtual CellClass cellClass() const;
  /// Keeps everything.
  void awakeFromNib() override;
  const PlainSliderCell& cell() const { return *cell_; }

  double minValue() const;
  void setMinValue(double value);
  double maxValue() const;
  void setMaxValue(double value);
  double doubleValue() const;
  /// The nearest step; what lies outside is taken as the nearer end.
  void setDoubleValue(double value);

  /// 0 without tick marks.
  int numberOfTickMarks() const;
  /// Over the whole range, whenever that is set: evenly, as near as whole steps allow. 0 takes them away.
  void setNumberOfTickMarks(int number);
  /// Whether user and keys go from tick mark to tick mark.
  bool allowsTickMarkValuesOnly() const { return cell_->settings().allowsTickMarkValuesOnly; }
  void setAllowsTickMarkValuesOnly(bool only);

  /// Where the bar is painted: along the groove that the mouse works on, 12 points high.
  QRectF trackRect() const;
  /// Where the knob is, for the mouse too.
  QRectF knobRect() const;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void hideEvent(QHideEvent* event) override;
  void sliderChange(SliderChange change) override;
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;

 private:
  qint64 range() const;
  void followTickMarks();
  int tickMark(int index) const;
  int nearestTickMark(int position) const;
  int tickMarkAfter(int position, bool up) const;
  void snapToTickMark(int action);
  void drawTickMarks(QPainter& painter) const;
  QStyleOptionSlider styleOption() const;

  std::unique_ptr<PlainSliderCell> cell_;
  FocusRing focusRing_;
};

}  // namespace zq
