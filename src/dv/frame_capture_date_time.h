#pragma once
// The recording date and time of a frame. They come in separate packs, so each half has a flag that says it is set.

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "base/calendar_date.h"

namespace zq {

class ArchiveReader;
class ArchiveWriter;
class DateOrder;

/// What description() asks of the application. An empty member answers nothing.
struct DescriptionSource {
  std::function<std::optional<std::string>(const std::string& key)> userDefault;
  /// Returns the key when the table has no entry for it.
  std::function<std::string(const std::string& key, const std::string& table)> localizedString;
};

/// No setter validates.
class DVFrameCaptureDateTime {
 public:
  DVFrameCaptureDateTime() = default;
  static DVFrameCaptureDateTime initWithYearMonthDay(int year, int month, int day);
  static DVFrameCaptureDateTime initWithHoursMinutesSeconds(int hours, int minutes, int seconds);
  static DVFrameCaptureDateTime initWithCoder(ArchiveReader& reader);

  using Handle = std::shared_ptr<DVFrameCaptureDateTime>;
  static Handle dateWithYearMonthDay(int year, int month, int day);
  static Handle timeWithHoursMinutesSeconds(int hours, int minutes, int seconds);
  static Handle dateWithYearMonthDayHoursMinutesSeconds(int year, int month, int day, int hours, int minutes,
                                                        int seconds);
  static Handle dateWithCalendarDate(const CalendarDate& date);
  /// From an absolute time: seconds since 1 January 2001 00:00:00 UTC, shown in the system's time zone.
  static Handle dateWithNSDate(std::int64_t referenceSeconds);

  void setDateWithYearMonthDay(int year, int month, int day);
  void setTimeWithHoursMinutesSeconds(int hours, int minutes, int seconds);
  /// Null clears the date flag only. The month is taken from the other value's day.
  void setDateFrom(const DVFrameCaptureDateTime* other);
  /// Null changes nothing.
  void setTimeFrom(const DVFrameCaptureDateTime* other);

  bool isDateSet() const { return isDateSet_; }
  bool isTimeSet() const { return isTimeSet_; }
  bool isFullySet() const { return isDateSet_ && isTimeSet_; }
  std::int32_t year() const { return year_; }
  std::int32_t monthOfYear() const { return month_; }
  std::int32_t dayOfMonth() const { return day_; }
  std::int32_t hourOfDay() const { return hours_; }
  std::int32_t minuteOfHour() const { return minutes_; }
  std::int32_t secondOfMinute() const { return seconds_; }

  /// Null unless fully set.
  DateValue date() const;
  /// The date at 10:00:00; null unless the date is set.
  DateValue dateReference() const;
  /// The time on 1 January 2001; null unless the time is set.
  DateValue timeReference() const;
  /// Seconds from `other` to this; -10000 when either is not fully set or `other` is null.
  double timeIntervalSinceCaptureDateTime(const DVFrameCaptureDateTime* other) const;
  /// Null unless fully set.
  Handle dateByAddingYearsMonthsDaysHoursMinutesSeconds(int years, int months, int days, int hours, int minutes,
                                                        int seconds) const;

  /// Neither hash nor isEqual looks at the flags.
  std::uint32_t hash() const;
  bool isEqual(const DVFrameCaptureDateTime* other) const;
  /// Copies what is set; an unset half is zero in the copy.
  Handle copy() const;
  void encodeWithCoder(ArchiveWriter& writer) const;

  /// For display. The first call in a process decides the order of day and month for all.
  std::string description() const;
  std::string descriptionInOrder(const DateOrder& order) const;
  /// Before the first description, on the thread that will ask for it.
  static void setDescriptionSource(DescriptionSource source);

 private:
  std::int32_t year_ = 0;
  std::int32_t month_ = 0;
  std::int32_t day_ = 0;
  std::int32_t hours_ = 0;
  std::int32_t minutes_ = 0;
  std::int32_t seconds_ = 0;
  bool isDateSet_ = false;
  bool isTimeSet_ = false;
};

}  // namespace zq
