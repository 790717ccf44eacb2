#include "dv/frame_capture_date_time.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <limits>
#include <optional>

#include "dv/date_order.h"
#include "support/dv_memory_archive.h"

namespace zq {
namespace {

using Value = DVFrameCaptureDateTime;

Value::Handle fullySet() {
  return Value::dateWithYearMonthDayHoursMinutesSeconds(2024, 7, 15, 13, 30, 45);
}

void expectNumbers(const Value& value, int year, int month, int day, int hours, int minutes, int seconds) {
  EXPECT_EQ(value.year(), year);
  EXPECT_EQ(value.monthOfYear(), month);
  EXPECT_EQ(value.dayOfMonth(), day);
  EXPECT_EQ(value.hourOfDay(), hours);
  EXPECT_EQ(value.minuteOfHour(), minutes);
  EXPECT_EQ(value.secondOfMinute(), seconds);
}

void expectFlags(const Value& value, bool isDateSet, bool isTimeSet) {
  EXPECT_EQ(value.isDateSet(), isDateSet);
  EXPECT_EQ(value.isTimeSet(), isTimeSet);
  EXPECT_EQ(value.isFullySet(), isDateSet && isTimeSet);
}

/// No test leaves its source behind.
class Description : public testing::Test {
 protected:
  ~Description() override { Value::setDescriptionSource({}); }

  static DateOrder orderOf(const char* format) { return DateOrder(std::string(format)); }
};

TEST(FrameCaptureDateTime, FreshOneIsEmpty) {
  const Value value;
  expectNumbers(value, 0, 0, 0, 0, 0, 0);
  expectFlags(value, false, false);
  EXPECT_EQ(value.date(), nullptr);
  EXPECT_EQ(value.dateReference(), nullptr);
  EXPECT_EQ(value.timeReference(), nullptr);
  EXPECT_EQ(value.hash(), 0U);
}

TEST(FrameCaptureDateTime, EachHalfHasItsFlag) {
  const Value date = Value::initWithYearMonthDay(2024, 7, 15);
  expectNumbers(date, 2024, 7, 15, 0, 0, 0);
  expectFlags(date, true, false);
  const Value time = Value::initWithHoursMinutesSeconds(13, 30, 45);
  expectNumbers(time, 0, 0, 0, 13, 30, 45);
  expectFlags(time, false, true);
  expectFlags(*Value::dateWithYearMonthDay(2024, 7, 15), true, false);
  expectFlags(*Value::timeWithHoursMinutesSeconds(13, 30, 45), false, true);
  expectNumbers(*fullySet(), 2024, 7, 15, 13, 30, 45);
  expectFlags(*fullySet(), true, true);
}

TEST(FrameCaptureDateTime, ComesFromDates) {
  const CalendarDate date(2024, 7, 15, 13, 30, 45);
  expectNumbers(*Value::dateWithCalendarDate(date), 2024, 7, 15, 13, 30, 45);
  const auto absolute = static_cast<std::int64_t>(date.timeIntervalSinceReferenceDate());
  expectNumbers(*Value::dateWithNSDate(absolute), 2024, 7, 15, 13, 30, 45);
  expectFlags(*Value::dateWithNSDate(absolute), true, true);
}

TEST(FrameCaptureDateTime, DateWithoutTime) {
  const auto value = Value::dateWithYearMonthDay(2024, 12, 31);
  EXPECT_FALSE(value->isFullySet());
  EXPECT_EQ(value->date(), nullptr);
  EXPECT_EQ(value->timeReference(), nullptr);
  EXPECT_EQ(value->timeIntervalSinceCaptureDateTime(fullySet().get()), -10000.0);
  EXPECT_EQ(fullySet()->timeIntervalSinceCaptureDateTime(value.get()), -10000.0);
  EXPECT_EQ(value->timeIntervalSinceCaptureDateTime(nullptr), -10000.0);
}

TEST(FrameCaptureDateTime, DateReferenceIsMidMorning) {
  EXPECT_EQ(Value::dateWithYearMonthDay(2024, 12, 31)->dateReference()->isoString(), "2024-12-31T10:00:00");
  EXPECT_EQ(fullySet()->dateReference()->isoString(), "2024-07-15T10:00:00");
}

TEST(FrameCaptureDateTime, TimeReferenceIsOnTheFirstDayOf2001) {
  EXPECT_EQ(Value::timeWithHoursMinutesSeconds(13, 30, 45)->timeReference()->isoString(), "2001-01-01T13:30:45");
}

TEST(FrameCaptureDateTime, DateHasAllSixNumbers) {
  EXPECT_EQ(fullySet()->date()->isoString(), "2024-07-15T13:30:45");
}

TEST(FrameCaptureDateTime, IntervalIsPositiveWhenLater) {
  const auto later = Value::dateWithYearMonthDayHoursMinutesSeconds(2024, 7, 15, 13, 31, 50);
  EXPECT_EQ(later->timeIntervalSinceCaptureDateTime(fullySet().get()), 65.0);
  EXPECT_EQ(fullySet()->timeIntervalSinceCaptureDateTime(later.get()), -65.0);
  EXPECT_EQ(later->timeIntervalSinceCaptureDateTime(nullptr), -10000.0);
}

TEST(FrameCaptureDateTime, AddingUsesTheCalendar) {
  const auto leapDay = Value::dateWithYearMonthDayHoursMinutesSeconds(2024, 1, 31, 23, 59, 59);
  const auto later = leapDay->dateByAddingYearsMonthsDaysHoursMinutesSeconds(0, 1, 0, 0, 0, 1);
  ASSERT_NE(later, nullptr);
  expectNumbers(*later, 2024, 3, 1, 0, 0, 0);
  expectFlags(*later, true, true);
  EXPECT_EQ(Value::dateWithYearMonthDay(2024, 1, 1)->dateByAddingYearsMonthsDaysHoursMinutesSeconds(0, 0, 1, 0, 0, 0),
            nullptr);
}

TEST(FrameCaptureDateTime, AddingPassesEachNumberOn) {
  const auto start = Value::dateWithYearMonthDayHoursMinutesSeconds(2024, 1, 1, 0, 0, 0);
  const auto later = start->dateByAddingYearsMonthsDaysHoursMinutesSeconds(1, 2, 3, 4, 5, 6);
  ASSERT_NE(later, nullptr);
  expectNumbers(*later, 2025, 3, 4, 4, 5, 6);
}

TEST(FrameCaptureDateTime, TimeWithoutDateHasNoInterval) {
  const auto time = Value::timeWithHoursMinutesSeconds(13, 30, 45);
  EXPECT_EQ(time->timeIntervalSinceCaptureDateTime(fullySet().get()), -10000.0);
  EXPECT_EQ(fullySet()->timeIntervalSinceCaptureDateTime(time.get()), -10000.0);
}

TEST(FrameCaptureDateTime, SetDateFromTakesTheMonthFromTheDay) {
  Value value;
  value.setDateFrom(fullySet().get());
  expectNumbers(value, 2024, 15, 15, 0, 0, 0);
  expectFlags(value, true, false);
}

TEST(FrameCaptureDateTime, SetDateFromCopiesTheFlagAlsoWhenClear) {
  Value value = *fullySet();
  const Value unset;
  value.setDateFrom(&unset);
  expectNumbers(value, 0, 0, 0, 13, 30, 45);
  expectFlags(value, false, true);
}

TEST(FrameCaptureDateTime, SetDateFromNullClearsTheFlagOnly) {
  Value value = *fullySet();
  value.setDateFrom(nullptr);
  expectNumbers(value, 2024, 7, 15, 13, 30, 45);
  expectFlags(value, false, true);
}

TEST(FrameCaptureDateTime, SetTimeFromCopiesTimeAndFlag) {
  Value value = Value::initWithYearMonthDay(2020, 1, 2);
  value.setTimeFrom(fullySet().get());
  expectNumbers(value, 2020, 1, 2, 13, 30, 45);
  expectFlags(value, true, true);
}

TEST(FrameCaptureDateTime, SetTimeFromCopiesTheFlagAlsoWhenClear) {
  Value value = *fullySet();
  value.setTimeFrom(Value::dateWithYearMonthDay(2020, 1, 2).get());
  expectNumbers(value, 2024, 7, 15, 0, 0, 0);
  expectFlags(value, true, false);
}

TEST(FrameCaptureDateTime, SetTimeFromNullKeepsEverything) {
  Value value = *fullySet();
  value.setTimeFrom(nullptr);
  expectNumbers(value, 2024, 7, 15, 13, 30, 45);
  expectFlags(value, true, true);
}

TEST(FrameCaptureDateTime, FlagsTakeNoPartInEqualityAndHash) {
  Value unset = *fullySet();
  unset.setDateFrom(nullptr);
  EXPECT_TRUE(unset.isEqual(fullySet().get()));
  EXPECT_EQ(unset.hash(), fullySet()->hash());
}

TEST(FrameCaptureDateTime, EveryNumberTakesPartInEquality) {
  const auto made = [](int y, int mo, int d, int h, int mi, int s) {
    return Value::dateWithYearMonthDayHoursMinutesSeconds(y, mo, d, h, mi, s);
  };
  EXPECT_FALSE(fullySet()->isEqual(nullptr));
  for (const auto& other :
       {made(2023, 7, 15, 13, 30, 45), made(2024, 8, 15, 13, 30, 45), made(2024, 7, 16, 13, 30, 45),
        made(2024, 7, 15, 14, 30, 45), made(2024, 7, 15, 13, 31, 45), made(2024, 7, 15, 13, 30, 46)}) {
    EXPECT_FALSE(fullySet()->isEqual(other.get()));
  }
}

TEST(FrameCaptureDateTime, HashIsAPolynomialThatWraps) {
  const std::uint64_t exact = ((((2024ULL * 31 + 7) * 31 + 15) * 31 + 13) * 31 + 30) * 31 + 45;
  ASSERT_GT(exact, std::numeric_limits<std::uint32_t>::max());
  EXPECT_EQ(fullySet()->hash(), static_cast<std::uint32_t>(exact));
  EXPECT_EQ(Value::timeWithHoursMinutesSeconds(-1, 0, 0)->hash(), 0U - 961U);
}

TEST(FrameCaptureDateTime, CopyLeavesUnsetHalvesAtZero) {
  Value value = *fullySet();
  value.setDateFrom(nullptr);
  const auto copy = value.copy();
  expectNumbers(*copy, 0, 0, 0, 13, 30, 45);
  expectFlags(*copy, false, true);
  expectNumbers(*fullySet()->copy(), 2024, 7, 15, 13, 30, 45);
  expectFlags(*fullySet()->copy(), true, true);
  expectFlags(*Value().copy(), false, false);
}

TEST(FrameCaptureDateTime, ArchivingRestoresAllEightFields) {
  Value halfSet = *fullySet();
  halfSet.setDateFrom(nullptr);
  const Value oddNumbers = Value::initWithYearMonthDay(-5, 39, std::numeric_limits<int>::min());
  for (const Value& value : {Value(), *fullySet(), halfSet, oddNumbers}) {
    test::MemoryArchiveWriter writer;
    value.encodeWithCoder(writer);
    EXPECT_EQ(writer.bytes().size(), 26U);
    test::MemoryArchiveReader reader(writer.bytes());
    const Value restored = Value::initWithCoder(reader);
    EXPECT_TRUE(reader.atEnd());
    EXPECT_TRUE(restored.isEqual(&value));
    expectFlags(restored, value.isDateSet(), value.isTimeSet());
  }
}

TEST(FrameCaptureDateTime, ArchiveHasSixNumbersThenTwoFlags) {
  test::MemoryArchiveWriter writer;
  Value::initWithHoursMinutesSeconds(13, 30, 45).encodeWithCoder(writer);
  const std::vector<std::uint8_t> expected{0, 0, 0, 0,  0, 0, 0, 0,  0, 0, 0, 0, 13,
                                           0, 0, 0, 30, 0, 0, 0, 45, 0, 0, 0, 0, 1};
  EXPECT_EQ(writer.bytes(), expected);

  test::MemoryArchiveWriter dateWriter;
  Value::initWithYearMonthDay(20, 7, 15).encodeWithCoder(dateWriter);
  const std::vector<std::uint8_t> expectedDate{20, 0, 0, 0, 7, 0, 0, 0, 15, 0, 0, 0, 0,
                                               0,  0, 0, 0, 0, 0, 0, 0, 0,  0, 0, 1, 0};
  EXPECT_EQ(dateWriter.bytes(), expectedDate);
}

TEST(DateOrderTest, DayFirstNeedsADayAtTheVeryBeginning) {
  EXPECT_FALSE(DateOrder(std::string("%d/%m/%Y")).isMonthFirst());
  EXPECT_FALSE(DateOrder(std::string("%e.%m.%y")).isMonthFirst());
  for (const char* format : {"%m/%d/%Y", "%y-%m-%d", " %d/%m", "d/m", "%D", "%", ""}) {
    EXPECT_TRUE(DateOrder(std::string(format)).isMonthFirst()) << format;
  }
  EXPECT_TRUE(DateOrder(std::nullopt).isMonthFirst());
}

TEST_F(Description, FullySetFollowsTheOrder) {
  EXPECT_EQ(fullySet()->descriptionInOrder(orderOf("%m/%d/%Y")), "07/15/2024 - 13:30:45");
  EXPECT_EQ(fullySet()->descriptionInOrder(orderOf("%d/%m/%Y")), "15/07/2024 - 13:30:45");
}

TEST_F(Description, WithoutASourceTheKeysComeBack) {
  const DateOrder order = orderOf("%d/%m/%Y");
  EXPECT_EQ(Value().descriptionInOrder(order), "Undefined date and time");
  EXPECT_EQ(Value::initWithYearMonthDay(2024, 7, 5).descriptionInOrder(order), "05/07/2024 - time unknown");
  EXPECT_EQ(Value::initWithYearMonthDay(2024, 7, 5).descriptionInOrder(orderOf("")), "07/05/2024 - time unknown");
  EXPECT_EQ(Value::initWithHoursMinutesSeconds(1, 2, 3).descriptionInOrder(order), "date unknown - 01:02:03");
}

TEST_F(Description, HalvesAreLocalisedButNotTheWhole) {
  std::vector<std::string> asked;
  Value::setDescriptionSource({{}, [&asked](const std::string& key, const std::string& table) {
                                 asked.push_back(table + ": " + key);
                                 return "<" + key + ">";
                               }});
  const DateOrder order = orderOf("%d");
  EXPECT_EQ(Value().descriptionInOrder(order), "<Undefined date and time>");
  EXPECT_EQ(Value::initWithYearMonthDay(2024, 7, 5).descriptionInOrder(order), "<05/07/2024 - time unknown>");
  EXPECT_EQ(Value::initWithHoursMinutesSeconds(1, 2, 3).descriptionInOrder(order), "<date unknown - 01:02:03>");
  EXPECT_EQ(fullySet()->descriptionInOrder(order), "15/07/2024 - 13:30:45");
  const std::vector<std::string> expected{"MorvaneDV: Undefined date and time",
                                          "MorvaneDV: %02d/%02d/%04d - time unknown",
                                          "MorvaneDV: date unknown - %02d:%02d:%02d"};
  EXPECT_EQ(asked, expected);
}

TEST_F(Description, OddTranslationsAreHarmless) {
  const auto translated = [](const std::string& text) {
    Value::setDescriptionSource({{}, [text](const std::string&, const std::string&) { return text; }});
    return Value::initWithHoursMinutesSeconds(1, 2, 3).descriptionInOrder(DateOrder(std::nullopt));
  };
  EXPECT_EQ(translated("%02d h, unknown day"), "01 h, unknown day");
  EXPECT_EQ(translated("%02d %02d %02d %02d"), "01 02 03 %02d");
  EXPECT_EQ(translated("%s %n %04d %"), "%s %n 0001 %");
  EXPECT_EQ(translated("{} {0}"), "{} {0}");
  EXPECT_EQ(translated(""), "");
}

/// Exits with 0 when the first description of this process asks for the short-date format and later ones keep to it.
[[noreturn]] void describeWithTwoSources() {
  std::string askedFor;
  Value::setDescriptionSource({[&askedFor](const std::string& key) {
                                 askedFor += key;
                                 return std::optional<std::string>("%e.%m.%Y");
                               },
                               {}});
  const std::string first = fullySet()->description();
  Value::setDescriptionSource({[](const std::string&) { return std::optional<std::string>("%m/%d/%Y"); }, {}});
  const std::string second = fullySet()->description();
  const bool kept = first == "15/07/2024 - 13:30:45" && second == first && askedFor == "NSShortDateFormatString";
  std::exit(kept ? 0 : 1);
}

TEST_F(Description, FirstOneOfAProcessAsksForTheShortDateFormat) {
  // Run again in a process of its own, as the decision of this one may have been taken.
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(describeWithTwoSources(), testing::ExitedWithCode(0), "");
}

TEST_F(Description, OrderIsDecidedOnceForTheProcess) {
  // Whatever was decided by now, a source of the other order changes nothing.
  const std::string decided = fullySet()->description();
  int asked = 0;
  for (const char* format : {"%d/%m/%Y", "%m/%d/%Y"}) {
    Value::setDescriptionSource({[&asked, format](const std::string&) {
                                   ++asked;
                                   return std::optional<std::string>(format);
                                 },
                                 {}});
    EXPECT_EQ(fullySet()->description(), decided);
  }
  EXPECT_EQ(asked, 0);
}

}  // namespace
}  // namespace zq
