#include "controls/message_text_view.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QStringList>

#include "controls/accessible_controls.h"
#include "controls/control_paint.h"

namespace zq {

namespace {

constexpr int kFontSize = 20;

// {200, 50, 250, 200} from the lower left corner, wherever the upper edge is.
QRectF messageRect(int viewHeight) {
  return {200, viewHeight - 50.0 - 200.0, 250, 200};
}

QString elided(const QString& message, const QFont& font, qreal width) {
  const QFontMetricsF metrics(font);
  QStringList lines = message.split('\n');
  for (QString& line : lines) line = metrics.elidedText(line, Qt::ElideRight, width);
  return lines.join('\n');
}

}  // namespace

ZQAccurateMessageTextView::ZQAccurateMessageTextView(QWidget* parent) : QWidget(parent) {
  installAccessibleControls();
}

void ZQAccurateMessageTextView::setMessage(const QString& message) {
  if (message_ == message) return;
  message_ = message;
  setAccessibleName(message);
  update();
}

void ZQAccurateMessageTextView::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setFont(boldSystemFont(kFontSize));
  painter.setPen(deviceWhite(1.0, 1.0));
  const QRectF rect = messageRect(height());
  painter.drawText(rect, Qt::AlignHCenter | Qt::AlignTop, elided(message_, painter.font(), rect.width()));
}

}  // namespace zq
