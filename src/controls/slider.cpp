#include "controls/slider.h"

#include <QFocusEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QStyleOptionSlider>
#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "controls/control_paint.h"
#include "controls/slider_cell.h"

namespace zq {

namespace {

constexpr qreal kTrackHeight = 12;
constexpr qreal kTickLength = 4;

int toInt(qint64 number) {
  return static_cast<int>(std::clamp<qint64>(number, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()));
}

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

qint64 ZQAccurateSlider::range() const {
  return static_cast<qint64>(maximum()) - minimum();
}

// Where no number was given, as many as Qt's interval makes: without one, there is a tick mark at each page.
int ZQAccurateSlider::numberOfTickMarks() const {
  if (tickPosition() == NoTicks) return 0;
  if (const int number = cell_->settings().numberOfTickMarks; number > 0) return number;
  const int interval = std::max(1, tickInterval() > 0 ? tickInterval() : pageStep());
  return toInt(range() / interval + 1);
}

void ZQAccurateSlider::setNumberOfTickMarks(int number) {
  cell_->settings().numberOfTickMarks = std::max(0, number);
  if (number <= 0) {
    setTickPosition(NoTicks);
    return;
  }
  if (tickPosition() == NoTicks) setTickPosition(TicksBelow);
  followTickMarks();
}

void ZQAccurateSlider::setAllowsTickMarkValuesOnly(bool only) {
  cell_->settings().allowsTickMarkValuesOnly = only;
}

// The look of the platform has even intervals only.
void ZQAccurateSlider::followTickMarks() {
  const int number = cell_->settings().numberOfTickMarks;
  if (number == 1) setTickInterval(toInt(range() + 1));
  if (number > 1) setTickInterval(std::max(1, toInt(std::llround(static_cast<double>(range()) / (number - 1)))));
  update();
}

void ZQAccurateSlider::sliderChange(SliderChange change) {
  if (change == SliderRangeChange) followTickMarks();
  QSlider::sliderChange(change);
}

// As near to their even places as whole steps allow; the last one is at the end.
int ZQAccurateSlider::tickMark(int index) const {
  const int last = numberOfTickMarks() - 1;
  if (last <= 0) return minimum();
  return toInt(minimum() + std::llround(index * static_cast<double>(range()) / last));
}

int ZQAccurateSlider::nearestTickMark(int position) const {
  if (range() == 0) return 0;
  const double place = static_cast<double>(static_cast<qint64>(position) - minimum()) / static_cast<double>(range());
  return toInt(std::llround(place * (numberOfTickMarks() - 1)));
}

// The first tick mark that is passed on the way up or down.
int ZQAccurateSlider::tickMarkAfter(int position, bool up) const {
  const int nearest = nearestTickMark(position);
  if (up) return tickMark(nearest) > position ? nearest : nearest + 1;
  return tickMark(nearest) < position ? nearest : nearest - 1;
}

// A step gets to the next tick mark. A page or a turn of the wheel gets at least so far, or it would be put back to
// where it came from.
void ZQAccurateSlider::snapToTickMark(int action) {
  if (!allowsTickMarkValuesOnly() || numberOfTickMarks() == 0) return;
  if (numberOfTickMarks() > range()) return;  // every step is one
  int index = nearestTickMark(sliderPosition());
  if (!isSliderDown() && sliderPosition() != value()) {
    const bool up = sliderPosition() > value();
    const int next = tickMarkAfter(value(), up);
    const bool isStep = action == SliderSingleStepAdd || action == SliderSingleStepSub;
    index = isStep ? next : (up ? std::max(index, next) : std::min(index, next));
  }
  setSliderPosition(tickMark(std::clamp(index, 0, numberOfTickMarks() - 1)));
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
  QPainter painter(this);
  drawTickMarks(painter);
  cell_->drawBarInside(painter, trackRect());
  cell_->drawKnob(painter, knobRect(), *this);
  focusRing_.draw(painter, *this);
}

// Where the middle of the knob is when it stops at one. Of more than there are points, some stand for their neighbours.
void ZQAccurateSlider::drawTickMarks(QPainter& painter) const {
  const int number = numberOfTickMarks();
  const QRectF knob = knobRect();
  QStyleOptionSlider option = styleOption();
  for (qint64 i = 0; i < number; i += 1 + number / std::max(1, width())) {
    option.sliderPosition = tickMark(static_cast<int>(i));
    const QRectF place = style()->subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderHandle, this);
    const qreal x = std::floor(place.center().x());
    if (tickPosition() & TicksAbove) painter.fillRect(QRectF(x, knob.top() - kTickLength, 1, kTickLength), grey());
    if (tickPosition() & TicksBelow) painter.fillRect(QRectF(x, knob.bottom(), 1, kTickLength), grey());
  }
}

void ZQAccurateSlider::mousePressEvent(QMouseEvent* event) {
  QSlider::mousePressEvent(event);
  cell_->startTrackingInView(*this);
}

// No release of the mouse comes any more.
void ZQAccurateSlider::hideEvent(QHideEvent* event) {
  setSliderDown(false);
  cell_->stopTracking();
  QSlider::hideEvent(event);
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
