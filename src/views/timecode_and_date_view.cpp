#include "views/timecode_and_date_view.h"

#include <QFont>
#include <QFontMetricsF>
#include <QLocale>
#include <QPainter>
#include <mutex>
#include <utility>

#include "platform/geometry.h"
#include "views/medium_date.h"
#include "views/replace_object.h"
#include "views/timecode_label.h"
#include "views/view_coordinates.h"

namespace zq {
namespace {

constexpr platform::Rect kTimecodeLabel{10, 455, 72, 15};
constexpr platform::Rect kDateLabel{90, 455, 82, 15};
constexpr qreal kCornerRadius = 10;
constexpr qreal kLabelLineWidth = 2;
const QColor kDateGreen = QColor::fromRgbF(0.1F, 0.5F, 0.2F, 1.0F);

QString textOf(const DateValue& date) {
  return date ? mediumDateText(*date, QLocale()) : QString();
}

void drawLabel(QPainter& painter, const QRectF& place, const QColor& background, const QString& text) {
  painter.setPen(QPen(Qt::white, kLabelLineWidth));
  painter.setBrush(background);
  painter.drawRoundedRect(place, kCornerRadius, kCornerRadius);
  const QString fitting = QFontMetricsF(painter.font()).elidedText(text, Qt::ElideRight, place.width());
  painter.drawText(place, Qt::AlignCenter | Qt::TextSingleLine, fitting);
}

}  // namespace

ZQTimecodeAndDateView::ZQTimecodeAndDateView(platform::Runtime& runtime, QWidget* parent)
    : QWidget(parent),
      runtime_(runtime),
      displayLock_(runtime.makeMutex("timecode and date view")),
      mainThread_(runtime.mainLoop()) {
  setAttribute(Qt::WA_TransparentForMouseEvents);
  setAttribute(Qt::WA_TranslucentBackground);
  setAttribute(Qt::WA_NoSystemBackground);
}

void ZQTimecodeAndDateView::setTimecode(const SMPTETime& timecode) {
  {
    const std::lock_guard guard(*displayLock_);
    timecode_ = timecode;
  }
  setNeedsDisplay();
}

void ZQTimecodeAndDateView::setDate(DateValue date) {
  if (replaceObject(*displayLock_, date_, std::move(date))) setNeedsDisplay();
}

// What was said last holds, also when a thread's word is carried out after a later one of the main thread.
void ZQTimecodeAndDateView::setHidden(bool hidden) {
  {
    const std::lock_guard guard(*displayLock_);
    hidden_ = hidden;
  }
  if (runtime_.mainLoop().isCurrent()) {
    showOrHide();
  } else {
    mainThread_.post([this] { showOrHide(); });
  }
}

void ZQTimecodeAndDateView::showOrHide() {
  bool hidden = false;
  {
    const std::lock_guard guard(*displayLock_);
    hidden = hidden_;
  }
  setVisible(!hidden);
}

SMPTETime ZQTimecodeAndDateView::timecode() const {
  const std::lock_guard guard(*displayLock_);
  return timecode_;
}

DateValue ZQTimecodeAndDateView::date() const {
  const std::lock_guard guard(*displayLock_);
  return date_;
}

void ZQTimecodeAndDateView::setNeedsDisplay() {
  if (runtime_.mainLoop().isCurrent()) {
    update();
  } else {
    mainThread_.post([this] { update(); });
  }
}

// Under the lock as a whole, so that no frame's values are drawn with those of the next.
void ZQTimecodeAndDateView::paintEvent(QPaintEvent* /*event*/) {
  static const QFont font = labelFont();
  const auto viewHeight = static_cast<float>(height());
  const std::lock_guard guard(*displayLock_);
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setFont(font);
  drawLabel(painter, toQt(kTimecodeLabel, viewHeight), Qt::black, QString::fromStdString(timecodeLabel(timecode_)));
  drawLabel(painter, toQt(kDateLabel, viewHeight), kDateGreen, textOf(date_));
}

}  // namespace zq
