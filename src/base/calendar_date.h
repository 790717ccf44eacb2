#pragma once
// A point in time together with its wall-clock fields in the system's time zone: what a camcorder's clock showed.

#include <array>
#include <cstdint>
#include <memory>
#include <string>

namespace zq {

class CalendarDate;
/// Dates are shared and immutable; a setter that ignores "the same object" compares these pointers.
using DateValue = std::shared_ptr<const CalendarDate>;

class CalendarDate {
 public:
  /// From wall-clock fields in the system's time zone. Fields out of range carry over (month 0 is December of the year
  /// before, day 39 runs into the next month), so every input yields a date.
  CalendarDate(int year, int month, int day, int hour, int minute, int second);

  /// As the constructor, from {year, month, day, hour, minute, second}; quick when a thread asks again for the same.
  static CalendarDate ofFields(const std::array<int, 6>& fields);
  /// From seconds since 1 January 2001 00:00:00 UTC, the reference date.
  static CalendarDate fromReferenceSeconds(std::int64_t seconds);

  int yearOfCommonEra() const { return year_; }
  int monthOfYear() const { return month_; }
  int dayOfMonth() const { return day_; }
  int hourOfDay() const { return hour_; }
  int minuteOfHour() const { return minute_; }
  int secondOfMinute() const { return second_; }

  /// Seconds since the reference date, 1 January 2001 00:00:00 UTC.
  double timeIntervalSinceReferenceDate() const { return static_cast<double>(referenceSeconds_); }
  /// Seconds from `other` to this date; positive when this one is later.
  double timeIntervalSinceDate(const CalendarDate& other) const;

  /// Years and months first (a day that the month lacks becomes its last one), then days, all on the wall clock; then
  /// hours, minutes and seconds as elapsed time.
  CalendarDate dateByAdding(int years, int months, int days, int hours, int minutes, int seconds) const;

  /// "YYYY-MM-DDTHH:MM:SS", local time without a zone.
  std::string isoString() const;

  bool operator==(const CalendarDate& other) const { return referenceSeconds_ == other.referenceSeconds_; }

 private:
  CalendarDate() = default;
  void setFieldsFromReferenceSeconds();

  int year_ = 0;
  int month_ = 0;
  int day_ = 0;
  int hour_ = 0;
  int minute_ = 0;
  int second_ = 0;
  std::int64_t referenceSeconds_ = 0;
};

}  // namespace zq
