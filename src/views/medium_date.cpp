#include "views/medium_date.h"

#include <QDate>
#include <QRegularExpression>
#include <QStringList>
#include <algorithm>
#include <array>

namespace zq {
namespace {

// Where the usual medium date is in figures; others name the month, shortened.
constexpr std::array kFiguresOnly{QLocale::German,    QLocale::Czech,    QLocale::Slovak,    QLocale::Finnish,
                                  QLocale::Bulgarian, QLocale::Japanese, QLocale::Lithuanian};

bool isField(const QString& part) {
  return part.startsWith('d') || part.startsWith('M') || part.startsWith('y');
}

bool isWeekday(const QString& part) {
  return part.startsWith(QStringLiteral("ddd"));
}

// A part is a run of one field's letter, or what stands between two fields, where quotes hide letters.
QStringList partsOf(const QString& format) {
  QStringList parts;
  bool quoted = false;
  QChar last;
  for (const QChar c : format) {
    const QChar kind = !quoted && QStringLiteral("dMy").contains(c) ? c : QChar();
    if (c == '\'') quoted = !quoted;
    if (parts.isEmpty() || kind != last) parts << QString();
    parts.last() += c;
    last = kind;
  }
  return parts;
}

// A weekday goes with what follows it up to the next field ("dddd 'den' d. MMMM"); as the last field, with what is
// before it too, but for a closing stop or character ("yyyy. MMMM d., dddd").
void dropWeekday(QStringList& parts) {
  const auto weekday = std::ranges::find_if(parts, isWeekday);
  if (weekday == parts.end()) return;
  auto end = weekday + 1;
  while (end != parts.end() && !isField(*end)) ++end;
  const bool wasLast = end == parts.end();
  parts.erase(weekday, end);
  if (!wasLast || parts.isEmpty() || isField(parts.last())) return;
  while (parts.last().endsWith(' ') || parts.last().endsWith(',')) parts.last().chop(1);
}

// "15 de julio de 2004": what joins the fields goes where each of them stands alone without it.
void dropWordsBetween(QStringList& parts) {
  static const QRegularExpression word(QStringLiteral(R"(^\s+'[^']+'\s+$)"));
  for (qsizetype i = 1; i + 1 < parts.size(); ++i) {
    if (word.match(parts[i]).hasMatch()) parts[i] = QStringLiteral(" ");
  }
}

QString withShortMonth(const QLocale& locale) {
  QStringList parts = partsOf(locale.dateFormat(QLocale::LongFormat));
  dropWeekday(parts);
  dropWordsBetween(parts);
  return parts.replaceInStrings(QStringLiteral("MMMM"), QStringLiteral("MMM")).join(QString());
}

QString withWholeYear(const QLocale& locale) {
  QString format = locale.dateFormat(QLocale::ShortFormat);
  if (!format.contains(QStringLiteral("yyyy"))) format.replace(QStringLiteral("yy"), QStringLiteral("yyyy"));
  return format;
}

}  // namespace

QString mediumDateText(const CalendarDate& date, const QLocale& locale) {
  const QDate day(date.yearOfCommonEra(), date.monthOfYear(), date.dayOfMonth());
  const bool figuresOnly = std::ranges::find(kFiguresOnly, locale.language()) != kFiguresOnly.end();
  return locale.toString(day, figuresOnly ? withWholeYear(locale) : withShortMonth(locale));
}

}  // namespace zq
