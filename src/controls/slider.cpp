#include "controls/slider.h"

#include <QFocusEvent>
#include <QMouseEvent>
#include <QStyleOptionSlider>
#include <QStylePainter>
#include <algorithm>
#include <cmath>
#include <utility>

#include "controls/slider_cell.h"

namespace zq {

namespace {

constexpr qreal kTrackHeight = 12;

}  // namespace

ZQAccurateSlider::ZQAccurateSlider(QWidget* parent)
    : QSlider(Qt::Horizontal, parent), cell_(std::make_unique<PlainSliderCell>()) {
  // Between the user's action and the value that comes of it, Qt lets the position be corrected.
  connect(this, &QSlider::actionTriggered, this, &ZQAccurateSlider::snapToTickMark);
  connect(this, &QSlider::sliderReleased, this, [this] { cell_->stopTracking(); });
}

ZQAccurateSlider::CellClass ZQAccurateSlider::cellClass() const {
  return [] { return std::unique_ptr<PlainSliderCell>(std::make_unique<ZQAccurateSliderCell>()); };
}

void ZQAccurateSlider::awakeFromNib() {
  const auto old = std::exchange(cell_, cellClass()());
  cell_->settings() = old->settings();
  followTickMarks();
  update();
}

double ZQAccurateSlider::minValue() const {
  return cell_->settings().minValue.value_or(minimum());
}

void ZQAccurateSlider::setMinValue(double value) {
  cell_->settings().minValue = value;
}

double ZQAccurateSlider::maxValue() const {
  return cell_->settings().maxValue.value_or(maximum());
}

void ZQAccurateSlider::setMaxValue(double value) {
  cell_->settings().maxValue = value;
}

double ZQAccurateSlider::doubleValue() const {
  if (maximum() == minimum()) return minValue();
  const double place = (static_cast<double>(value()) - minimum()) / (static_cast<double>(maximum()) - minimum());
  return std::lerp(minValue(), maxValue(), place);
}

void ZQAccurateSlider::setDoubleValue(double value) {
  const double span = maxValue() - minValue();
  const double place = span == 0 ? 0 : std::clamp((value - minValue()) / span, 0.0, 1.0);
  if (std::isnan(place)) return;  // no place on the scale
  setValue(static_cast<int>(std::lround(std::lerp(minimum(), maximum(), place))));
}

// As Qt has it: without an interval, there is a tick mark at each page.
int ZQAccurateSlider::tickStep() const {
  return std::max(1, tickInterval() > 0 ? tickInterval() : pageStep());
}

int ZQAccurateSlider::numberOfTickMarks() const {
  if (tickPosition() == NoTicks) return 0;
  return (maximum() - minimum()) / tickStep() + 1;
}

void ZQAccurateSlider::setNumberOfTickMarks(int number) {
  if (number <= 0) {
    setTickPosition(NoTicks);
    return;
  }
  const int range = maximum() - minimum();
  setTickInterval(number == 1 ? range + 1 : std::max(1, range / (number - 1)));
  if (tickPosition() == NoTicks) setTickPosition(TicksBelow);
  followTickMarks();
}

void ZQAccurateSlider::setAllowsTickMarkValuesOnly(bool only) {
  cell_->settings().allowsTickMarkValuesOnly = only;
  followTickMarks();
}

// Keys and wheel must get as far as the next tick mark, or they would be put back to where they came from.
void ZQAccurateSlider::followTickMarks() {
  if (!allowsTickMarkValuesOnly() || numberOfTickMarks() == 0) return;
  const int step = tickStep();
  setTickInterval(step);
  setSingleStep(step);
  setPageStep(std::max(step, pageStep() / step * step));
}

void ZQAccurateSlider::snapToTickMark() {
  if (!allowsTickMarkValuesOnly() || numberOfTickMarks() == 0) return;
  const int last = numberOfTickMarks() - 1;
  const double tick = std::round((static_cast<double>(sliderPosition()) - minimum()) / tickStep());
  setSliderPosition(minimum() + std::min(last, static_cast<int>(tick)) * tickStep());
}

QStyleOptionSlider ZQAccurateSlider::styleOption() const {
  QStyleOptionSlider option;
  initStyleOption(&option);
  return option;
}

QRectF ZQAccurateSlider::trackRect() const {
  const QStyleOptionSlider option = styleOption();
  const QRectF groove = style()->subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderGroove, this);
  return {groove.x(), std::floor(groove.center().y() - kTrackHeight / 2), groove.width(), kTrackHeight};
}

QRectF ZQAccurateSlider::knobRect() const {
  const QStyleOptionSlider option = styleOption();
  return style()->subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderHandle, this);
}

void ZQAccurateSlider::paintEvent(QPaintEvent* event) {
  if (!cell_->isSkinned() || orientation() != Qt::Horizontal) {
    QSlider::paintEvent(event);
    return;
  }
  QStylePainter painter(this);
  if (tickPosition() != NoTicks) {
    QStyleOptionSlider option = styleOption();
    option.subControls = QStyle::SC_SliderTickmarks;
    painter.drawComplexControl(QStyle::CC_Slider, option);
  }
  cell_->drawBarInside(painter, trackRect());
  cell_->drawKnob(painter, knobRect(), *this);
  focusRing_.draw(painter, *this);
}

void ZQAccurateSlider::mousePressEvent(QMouseEvent* event) {
  QSlider::mousePressEvent(event);
  cell_->startTrackingInView(*this);
}

void ZQAccurateSlider::focusInEvent(QFocusEvent* event) {
  focusRing_.focusIn(*event);
  QSlider::focusInEvent(event);
}

void ZQAccurateSlider::focusOutEvent(QFocusEvent* event) {
  focusRing_.focusOut(*event);
  QSlider::focusOutEvent(event);
}

}  // namespace zq
