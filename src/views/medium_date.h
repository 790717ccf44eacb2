#pragma once
// A date as short as it can be read without doubt: "Jul 15, 2004".

#include <QLocale>
#include <QString>

#include "base/calendar_date.h"

namespace zq {

/// The day, month and year in the language and order of `locale`; no time. Empty for a date that no calendar has.
QString mediumDateText(const CalendarDate& date, const QLocale& locale);

}  // namespace zq
