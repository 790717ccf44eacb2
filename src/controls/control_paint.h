#pragma once
// Fonts, colours and titles as the skinned controls draw them. Sizes are in points of the screen.

#include <QColor>
#include <QFont>
#include <QPointF>
#include <QSizeF>
#include <QString>

class QLineEdit;
class QPainter;

namespace zq {

QFont systemFont(int size);
QFont boldSystemFont(int size);
/// "Helvetica"; where the family is missing, the system font.
QFont helveticaFont(int size);
/// "Helvetica"; where the family is missing, the bold system font.
QFont helveticaOrBoldSystemFont(int size);

/// A level of grey. What lies outside 0 to 1 is taken as the nearer end.
QColor deviceWhite(double white, double alpha = 1.0);
/// Half way between black and white.
QColor grey();

/// A title without the mark of its shortcut: "&Stop" is "Stop", "Up && down" is "Up & down".
QString withoutMnemonic(const QString& title);
/// How much room a title takes in one line.
QSizeF titleSize(const QFont& font, const QString& title);
/// With the painter's font and pen, its shortcut underlined where the platform does that.
void drawTitle(QPainter& painter, const QPointF& upperLeft, const QString& title);

/// What a line edit paints behind its text, and the text; a placeholder is half as strong.
void setFieldColors(QLineEdit& field, const QColor& base, const QColor& text);

}  // namespace zq
