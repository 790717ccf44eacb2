#include "controls/control_paint.h"

#include <QApplication>
#include <QFontDatabase>
#include <QFontMetricsF>
#include <QLineEdit>
#include <QPainter>
#include <QPalette>
#include <QStyle>
#include <algorithm>

namespace zq {

namespace {

QFont withSize(QFont font, int size) {
  font.setPixelSize(size);
  return font;
}

// A replacement that the system would put in for the family does not count as the family.
bool hasHelvetica() {
  return QFontDatabase::hasFamily("Helvetica");
}

// As Qt derives it by itself, but only as long as nobody sets the text's.
QColor faint(QColor color) {
  color.setAlphaF(color.alphaF() / 2);
  return color;
}

int titleFlags() {
  const bool underlined = QApplication::style()->styleHint(QStyle::SH_UnderlineShortcut) != 0;
  return Qt::TextSingleLine | (underlined ? Qt::TextShowMnemonic : Qt::TextHideMnemonic);
}

}  // namespace

QFont systemFont(int size) {
  return withSize(QFontDatabase::systemFont(QFontDatabase::GeneralFont), size);
}

QFont boldSystemFont(int size) {
  QFont font = systemFont(size);
  font.setBold(true);
  return font;
}

QFont helveticaFont(int size) {
  return hasHelvetica() ? withSize(QFont("Helvetica"), size) : systemFont(size);
}

QFont helveticaOrBoldSystemFont(int size) {
  return hasHelvetica() ? withSize(QFont("Helvetica"), size) : boldSystemFont(size);
}

QColor deviceWhite(double white, double alpha) {
  const auto level = static_cast<float>(std::clamp(white, 0.0, 1.0));
  return QColor::fromRgbF(level, level, level, static_cast<float>(std::clamp(alpha, 0.0, 1.0)));
}

QColor grey() {
  return deviceWhite(0.5);
}

QString withoutMnemonic(const QString& title) {
  QString shown;
  for (qsizetype i = 0; i < title.size(); ++i) {
    if (title[i] == '&' && ++i == title.size()) break;
    shown += title[i];
  }
  return shown;
}

QSizeF titleSize(const QFont& font, const QString& title) {
  return QFontMetricsF(font).size(Qt::TextSingleLine, withoutMnemonic(title));
}

void drawTitle(QPainter& painter, const QPointF& upperLeft, const QString& title) {
  painter.drawText(QRectF(upperLeft, titleSize(painter.font(), title)),
                   titleFlags() | Qt::AlignLeft | Qt::AlignTop | Qt::TextDontClip, title);
}

void setFieldColors(QLineEdit& field, const QColor& base, const QColor& text) {
  QPalette palette = field.palette();
  palette.setColor(QPalette::Base, base);
  palette.setColor(QPalette::Text, text);
  palette.setColor(QPalette::PlaceholderText, faint(text));
  field.setPalette(palette);
}

}  // namespace zq
