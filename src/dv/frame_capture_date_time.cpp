#include "dv/frame_capture_date_time.h"

#include <fmt/format.h>

#include <array>
#include <initializer_list>
#include <string_view>
#include <utility>

#include "dv/archive.h"
#include "dv/date_order.h"

namespace zq {
namespace {

constexpr double kNoInterval = -10000.0;
// Mid-morning, so that comparing dates alone is safe from daylight saving and from rounding to a neighbouring day.
constexpr int kDateReferenceHour = 10;
constexpr char kShortDateFormatKey[] = "NSShortDateFormatString";
constexpr char kStringsTable[] = "MorvaneDV";

DescriptionSource& descriptionSource() {
  static DescriptionSource source;
  return source;
}

std::optional<std::string> userDefault(const std::string& key) {
  const DescriptionSource& source = descriptionSource();
  return source.userDefault ? source.userDefault(key) : std::nullopt;
}

std::string localized(const std::string& key) {
  const DescriptionSource& source = descriptionSource();
  return source.localizedString ? source.localizedString(key, kStringsTable) : key;
}

const DateOrder& dateOrderOfProcess() {
  static const DateOrder order(userDefault(kShortDateFormatKey));
  return order;
}

DateValue calendarDate(int year, int month, int day, int hour, int minute, int second) {
  return std::make_shared<const CalendarDate>(CalendarDate::ofFields({year, month, day, hour, minute, second}));
}

struct Placeholder {
  std::string_view text;
  int digits;
};
constexpr std::array<Placeholder, 2> kPlaceholders{{{"%02d", 2}, {"%04d", 4}}};

/// A translated format is data, so it is never handed to printf: its placeholders are replaced in turn, and what has no
/// number left for it stays as it is.
std::string withNumbers(std::string_view format, std::initializer_list<std::int32_t> numbers) {
  std::string text;
  const std::int32_t* number = numbers.begin();
  while (!format.empty()) {
    std::size_t taken = 0;
    for (const Placeholder& placeholder : kPlaceholders) {
      if (number == numbers.end() || !format.starts_with(placeholder.text)) continue;
      text += fmt::format("{:0{}}", *number++, placeholder.digits);
      taken = placeholder.text.size();
      break;
    }
    if (taken == 0) {
      text += format.front();
      taken = 1;
    }
    format.remove_prefix(taken);
  }
  return text;
}

}  // namespace

DVFrameCaptureDateTime DVFrameCaptureDateTime::initWithYearMonthDay(int year, int month, int day) {
  DVFrameCaptureDateTime value;
  value.setDateWithYearMonthDay(year, month, day);
  return value;
}

DVFrameCaptureDateTime DVFrameCaptureDateTime::initWithHoursMinutesSeconds(int hours, int minutes, int seconds) {
  DVFrameCaptureDateTime value;
  value.setTimeWithHoursMinutesSeconds(hours, minutes, seconds);
  return value;
}

DVFrameCaptureDateTime DVFrameCaptureDateTime::initWithCoder(ArchiveReader& reader) {
  DVFrameCaptureDateTime value;
  value.year_ = reader.readInt32();
  value.month_ = reader.readInt32();
  value.day_ = reader.readInt32();
  value.hours_ = reader.readInt32();
  value.minutes_ = reader.readInt32();
  value.seconds_ = reader.readInt32();
  value.isDateSet_ = reader.readByte() != 0;
  value.isTimeSet_ = reader.readByte() != 0;
  return value;
}

DVFrameCaptureDateTime::Handle DVFrameCaptureDateTime::dateWithYearMonthDay(int year, int month, int day) {
  return std::make_shared<DVFrameCaptureDateTime>(initWithYearMonthDay(year, month, day));
}

DVFrameCaptureDateTime::Handle DVFrameCaptureDateTime::timeWithHoursMinutesSeconds(int hours, int minutes,
                                                                                   int seconds) {
  return std::make_shared<DVFrameCaptureDateTime>(initWithHoursMinutesSeconds(hours, minutes, seconds));
}

DVFrameCaptureDateTime::Handle DVFrameCaptureDateTime::dateWithYearMonthDayHoursMinutesSeconds(int year, int month,
                                                                                               int day, int hours,
                                                                                               int minutes,
                                                                                               int seconds) {
  Handle value = dateWithYearMonthDay(year, month, day);
  value->setTimeWithHoursMinutesSeconds(hours, minutes, seconds);
  return value;
}

DVFrameCaptureDateTime::Handle DVFrameCaptureDateTime::dateWithCalendarDate(const CalendarDate& date) {
  return dateWithYearMonthDayHoursMinutesSeconds(date.yearOfCommonEra(), date.monthOfYear(), date.dayOfMonth(),
                                                 date.hourOfDay(), date.minuteOfHour(), date.secondOfMinute());
}

DVFrameCaptureDateTime::Handle DVFrameCaptureDateTime::dateWithNSDate(std::int64_t referenceSeconds) {
  return dateWithCalendarDate(CalendarDate::fromReferenceSeconds(referenceSeconds));
}

void DVFrameCaptureDateTime::setDateWithYearMonthDay(int year, int month, int day) {
  year_ = year;
  month_ = month;
  day_ = day;
  isDateSet_ = true;
}

void DVFrameCaptureDateTime::setTimeWithHoursMinutesSeconds(int hours, int minutes, int seconds) {
  hours_ = hours;
  minutes_ = minutes;
  seconds_ = seconds;
  isTimeSet_ = true;
}

void DVFrameCaptureDateTime::setDateFrom(const DVFrameCaptureDateTime* other) {
  if (other == nullptr) {
    isDateSet_ = false;
    return;
  }
  year_ = other->year_;
  // Month from day is intended: a caller of this operation gets what it always got.
  month_ = other->day_;
  day_ = other->day_;
  isDateSet_ = other->isDateSet_;
}

void DVFrameCaptureDateTime::setTimeFrom(const DVFrameCaptureDateTime* other) {
  // Unlike setDateFrom, null leaves the flag alone.
  if (other == nullptr) return;
  hours_ = other->hours_;
  minutes_ = other->minutes_;
  seconds_ = other->seconds_;
  isTimeSet_ = other->isTimeSet_;
}

DateValue DVFrameCaptureDateTime::date() const {
  return isFullySet() ? calendarDate(year_, month_, day_, hours_, minutes_, seconds_) : nullptr;
}

DateValue DVFrameCaptureDateTime::dateReference() const {
  return isDateSet_ ? calendarDate(year_, month_, day_, kDateReferenceHour, 0, 0) : nullptr;
}

DateValue DVFrameCaptureDateTime::timeReference() const {
  return isTimeSet_ ? calendarDate(2001, 1, 1, hours_, minutes_, seconds_) : nullptr;
}

double DVFrameCaptureDateTime::timeIntervalSinceCaptureDateTime(const DVFrameCaptureDateTime* other) const {
  if (other == nullptr || !other->isFullySet() || !isFullySet()) return kNoInterval;
  return date()->timeIntervalSinceDate(*other->date());
}

DVFrameCaptureDateTime::Handle DVFrameCaptureDateTime::dateByAddingYearsMonthsDaysHoursMinutesSeconds(
    int years, int months, int days, int hours, int minutes, int seconds) const {
  const DateValue from = date();
  if (!from) return nullptr;
  return dateWithCalendarDate(from->dateByAdding(years, months, days, hours, minutes, seconds));
}

std::uint32_t DVFrameCaptureDateTime::hash() const {
  std::uint32_t hash = 0;
  for (const std::int32_t number : {year_, month_, day_, hours_, minutes_, seconds_}) {
    hash = hash * 31U + static_cast<std::uint32_t>(number);
  }
  return hash;
}

bool DVFrameCaptureDateTime::isEqual(const DVFrameCaptureDateTime* other) const {
  return other != nullptr && year_ == other->year_ && month_ == other->month_ && day_ == other->day_ &&
         hours_ == other->hours_ && minutes_ == other->minutes_ && seconds_ == other->seconds_;
}

DVFrameCaptureDateTime::Handle DVFrameCaptureDateTime::copy() const {
  Handle value = std::make_shared<DVFrameCaptureDateTime>();
  if (isDateSet_) value->setDateWithYearMonthDay(year_, month_, day_);
  if (isTimeSet_) value->setTimeWithHoursMinutesSeconds(hours_, minutes_, seconds_);
  return value;
}

void DVFrameCaptureDateTime::encodeWithCoder(ArchiveWriter& writer) const {
  for (const std::int32_t number : {year_, month_, day_, hours_, minutes_, seconds_}) writer.writeInt32(number);
  writer.writeByte(isDateSet_ ? 1 : 0);
  writer.writeByte(isTimeSet_ ? 1 : 0);
}

std::string DVFrameCaptureDateTime::description() const {
  return descriptionInOrder(dateOrderOfProcess());
}

std::string DVFrameCaptureDateTime::descriptionInOrder(const DateOrder& order) const {
  const std::int32_t first = order.isMonthFirst() ? month_ : day_;
  const std::int32_t second = order.isMonthFirst() ? day_ : month_;
  if (isFullySet()) {
    return fmt::format("{:02}/{:02}/{:04} - {:02}:{:02}:{:02}", first, second, year_, hours_, minutes_, seconds_);
  }
  if (isDateSet_) return withNumbers(localized("%02d/%02d/%04d - time unknown"), {first, second, year_});
  if (isTimeSet_) return withNumbers(localized("date unknown - %02d:%02d:%02d"), {hours_, minutes_, seconds_});
  return localized("Undefined date and time");
}

void DVFrameCaptureDateTime::setDescriptionSource(DescriptionSource source) {
  descriptionSource() = std::move(source);
}

}  // namespace zq
