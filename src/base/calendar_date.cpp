#include "base/calendar_date.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <ctime>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "base/digits.h"

namespace zq {
namespace {

// 1 January 2001 00:00:00 UTC in seconds since 1970.
constexpr std::int64_t kReferenceDateUnixSeconds = 978307200;

// No field of a frame comes near this; what an archive may hold beyond it stays computable.
constexpr int kLargestField = 10'000'000;

int bounded(std::int64_t field) {
  return static_cast<int>(std::clamp<std::int64_t>(field, -kLargestField, kLargestField));
}

std::tm tmFrom(int year, int month, int day, int hour, int minute, int second) {
  std::tm fields{};
  fields.tm_year = bounded(year) - 1900;
  fields.tm_mon = bounded(month) - 1;
  fields.tm_mday = bounded(day);
  fields.tm_hour = bounded(hour);
  fields.tm_min = bounded(minute);
  fields.tm_sec = bounded(second);
  return fields;
}

bool sameWallClock(const std::tm& a, const std::tm& b) {
  return a.tm_sec == b.tm_sec && a.tm_min == b.tm_min && a.tm_hour == b.tm_hour && a.tm_mday == b.tm_mday;
}

// In the hour that a zone repeats in autumn the first one counts. Left to itself, mktime takes the one that it took
// last, and two frames of the same date could be an hour apart. Zones repeat an hour, or half of one; which of the two
// is called summer time differs, and where a zone moved for good neither is.
std::time_t secondsOf(std::tm fields) {
  fields.tm_isdst = -1;
  const std::time_t seconds = std::mktime(&fields);
  for (const std::time_t repeated : {3600, 1800}) {
    const std::time_t earlier = seconds - repeated;
    std::tm first{};
    localtime_r(&earlier, &first);
    if (sameWallClock(first, fields)) return earlier;
  }
  return seconds;
}

int lastDayOfMonth(int year, int month) {
  constexpr std::array<int, 12> kDays{31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  const bool leapYear = year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
  return month == 2 && leapYear ? 29 : kDays.at(static_cast<std::size_t>(month - 1));
}

/// The last conversion of this thread. The frames of a second all carry the same date, and the system's conversion
/// looks for a changed time zone on the disk each time.
struct LastConversion {
  std::array<int, 6> fields{};
  std::string zone;
  std::optional<CalendarDate> date;
};

LastConversion& lastConversion() {
  thread_local LastConversion last;
  return last;
}

std::string_view zoneVariable() {
  const char* zone = std::getenv("TZ");
  return zone != nullptr ? zone : std::string_view();
}

}  // namespace

CalendarDate CalendarDate::ofFields(const std::array<int, 6>& fields) {
  LastConversion& last = lastConversion();
  if (!last.date || last.fields != fields || last.zone != zoneVariable()) {
    last = {fields, std::string(zoneVariable()),
            CalendarDate(fields[0], fields[1], fields[2], fields[3], fields[4], fields[5])};
  }
  return *last.date;
}

CalendarDate::CalendarDate(int year, int month, int day, int hour, int minute, int second) {
  const std::tm fields = tmFrom(year, month, day, hour, minute, second);
  referenceSeconds_ = static_cast<std::int64_t>(secondsOf(fields)) - kReferenceDateUnixSeconds;
  setFieldsFromReferenceSeconds();
}

CalendarDate CalendarDate::fromReferenceSeconds(std::int64_t seconds) {
  CalendarDate date;
  date.referenceSeconds_ = seconds;
  date.setFieldsFromReferenceSeconds();
  return date;
}

void CalendarDate::setFieldsFromReferenceSeconds() {
  const std::time_t unixSeconds = static_cast<std::time_t>(referenceSeconds_ + kReferenceDateUnixSeconds);
  std::tm fields{};
  localtime_r(&unixSeconds, &fields);
  year_ = fields.tm_year + 1900;
  month_ = fields.tm_mon + 1;
  day_ = fields.tm_mday;
  hour_ = fields.tm_hour;
  minute_ = fields.tm_min;
  second_ = fields.tm_sec;
}

double CalendarDate::timeIntervalSinceDate(const CalendarDate& other) const {
  return static_cast<double>(referenceSeconds_ - other.referenceSeconds_);
}

CalendarDate CalendarDate::dateByAdding(int years, int months, int days, int hours, int minutes, int seconds) const {
  const std::int64_t monthsFromZero = (std::int64_t{year_} + years) * 12 + (month_ - 1) + months;
  const std::int64_t year = monthsFromZero >= 0 ? monthsFromZero / 12 : (monthsFromZero - 11) / 12;
  const int month = static_cast<int>(monthsFromZero - year * 12 + 1);
  const int day = std::min(day_, lastDayOfMonth(bounded(year), month));
  const CalendarDate onWallClock(bounded(year), month, bounded(std::int64_t{day} + days), hour_, minute_, second_);
  const std::int64_t elapsed = std::int64_t{hours} * 3600 + std::int64_t{minutes} * 60 + seconds;
  return fromReferenceSeconds(onWallClock.referenceSeconds_ + elapsed);
}

std::string CalendarDate::isoString() const {
  std::string text;
  appendDigits(text, year_, 4);
  for (const auto& [separator, number] :
       {std::pair{'-', month_}, {'-', day_}, {'T', hour_}, {':', minute_}, {':', second_}}) {
    text.push_back(separator);
    appendDigits(text, number, 2);
  }
  return text;
}

}  // namespace zq
