#include "base/calendar_date.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <time.h>

#include <array>
#include <limits>
#include <string>

namespace zq {
namespace {

class CalendarDateInZone : public ::testing::Test {
 protected:
  void useZone(const char* zone) {
    ::setenv("TZ", zone, 1);
    ::tzset();
  }
  void TearDown() override {
    ::unsetenv("TZ");
    ::tzset();
  }
};

TEST_F(CalendarDateInZone, KeepsTheFieldsItWasMadeOf) {
  EXPECT_EQ(CalendarDate(2004, 7, 15, 13, 30, 45).isoString(), "2004-07-15T13:30:45");
}

TEST_F(CalendarDateInZone, CountsSecondsFromTheReferenceDateInUtc) {
  useZone("UTC");
  EXPECT_EQ(CalendarDate(2001, 1, 1, 0, 0, 0).timeIntervalSinceReferenceDate(), 0.0);
  EXPECT_EQ(CalendarDate(2001, 1, 1, 0, 1, 1).timeIntervalSinceReferenceDate(), 61.0);
  EXPECT_LT(CalendarDate(2000, 12, 31, 23, 59, 59).timeIntervalSinceReferenceDate(), 0.0);
}

TEST_F(CalendarDateInZone, FieldsAreThoseOfTheSystemsZone) {
  useZone("EST5");
  EXPECT_EQ(CalendarDate(2001, 1, 1, 0, 0, 0).timeIntervalSinceReferenceDate(), 5 * 3600.0);
  EXPECT_EQ(CalendarDate::fromReferenceSeconds(0).isoString(), "2000-12-31T19:00:00");
}

TEST_F(CalendarDateInZone, FieldsOutOfRangeCarryOver) {
  EXPECT_EQ(CalendarDate(2004, 0, 15, 0, 0, 0).isoString(), "2003-12-15T00:00:00");
  EXPECT_EQ(CalendarDate(2004, 1, 39, 0, 0, 0).isoString(), "2004-02-08T00:00:00");
  EXPECT_EQ(CalendarDate(2004, 1, 1, 25, 61, 61).isoString(), "2004-01-02T02:02:01");
}

TEST_F(CalendarDateInZone, TheQuickWayGivesTheSameDateAlsoWhenTheZoneChanges) {
  useZone("UTC");
  const CalendarDate inUtc = CalendarDate::ofFields({2004, 7, 15, 13, 30, 45});
  EXPECT_EQ(inUtc, CalendarDate(2004, 7, 15, 13, 30, 45));
  EXPECT_EQ(CalendarDate::ofFields({2004, 7, 15, 13, 30, 45}), inUtc);
  useZone("EST5");
  EXPECT_EQ(CalendarDate::ofFields({2004, 7, 15, 13, 30, 45}), CalendarDate(2004, 7, 15, 13, 30, 45));
  EXPECT_NE(CalendarDate::ofFields({2004, 7, 15, 13, 30, 45}), inUtc);
}

TEST_F(CalendarDateInZone, TheHourThatAutumnRepeatsIsAlwaysTheFirstOfThem) {
  useZone("CET-1CEST,M3.5.0,M10.5.0/3");
  const CalendarDate winter(2004, 1, 15, 12, 0, 0);
  const CalendarDate afterWinter(2004, 10, 31, 2, 30, 0);
  const CalendarDate summer(2004, 7, 15, 12, 0, 0);
  const CalendarDate afterSummer(2004, 10, 31, 2, 30, 1);
  EXPECT_EQ(afterSummer.timeIntervalSinceDate(afterWinter), 1.0);
  EXPECT_EQ(afterWinter.timeIntervalSinceDate(CalendarDate(2004, 10, 31, 1, 30, 0)), 3600.0);
  EXPECT_EQ(afterWinter.isoString(), "2004-10-31T02:30:00");
  EXPECT_EQ(winter.timeIntervalSinceDate(CalendarDate(2004, 1, 15, 11, 0, 0)), 3600.0);
  EXPECT_EQ(summer.timeIntervalSinceDate(CalendarDate(2004, 7, 15, 11, 0, 0)), 3600.0);
}

// Where winter is what is set apart, as in Ireland, and where half an hour is repeated, as on Lord Howe Island.
TEST_F(CalendarDateInZone, TheTimeThatAutumnRepeatsIsTheFirstHoweverAZoneNamesIt) {
  struct Zone {
    const char* rule;
    int month, day, repeatedSeconds;
  };
  for (const Zone& zone :
       {Zone{"IST-1GMT0,M10.5.0,M3.5.0/1", 10, 31, 3600}, Zone{"<+1030>-10:30<+11>-11,M10.1.0,M4.1.0", 4, 4, 1800}}) {
    useZone(zone.rule);
    for (const int otherMonth : {1, 7}) {
      const CalendarDate other(2004, otherMonth, 15, 12, 0, 0);
      const CalendarDate repeated(2004, zone.month, zone.day, 1, 45, 0);
      EXPECT_EQ(repeated.timeIntervalSinceDate(CalendarDate(2004, zone.month, zone.day, 0, 45, 0)), 3600.0)
          << zone.rule << " after a date in month " << other.monthOfYear();
      EXPECT_EQ(repeated.isoString().substr(11), "01:45:00");
    }
    EXPECT_EQ(CalendarDate(2004, zone.month, zone.day, 3, 0, 0)
                  .timeIntervalSinceDate(CalendarDate(2004, zone.month, zone.day, 0, 0, 0)),
              3 * 3600.0 + zone.repeatedSeconds);
  }
}

TEST_F(CalendarDateInZone, TheQuickWayLooksAtEachField) {
  useZone("UTC");
  const std::array<int, 6> fields{2004, 7, 15, 13, 30, 45};
  for (std::size_t i = 0; i < fields.size(); ++i) {
    std::array<int, 6> other = fields;
    ++other[i];
    const CalendarDate before = CalendarDate::ofFields(fields);
    EXPECT_EQ(CalendarDate::ofFields(other), CalendarDate(other[0], other[1], other[2], other[3], other[4], other[5]));
    EXPECT_EQ(CalendarDate::ofFields(fields), before);
  }
}

TEST_F(CalendarDateInZone, NoNumberIsTooLarge) {
  constexpr int kMost = std::numeric_limits<int>::max();
  constexpr int kLeast = std::numeric_limits<int>::min();
  EXPECT_GT(CalendarDate(kMost, kMost, kMost, kMost, kMost, kMost).timeIntervalSinceReferenceDate(), 0.0);
  EXPECT_LT(CalendarDate(kLeast, kLeast, kLeast, kLeast, kLeast, kLeast).timeIntervalSinceReferenceDate(), 0.0);
  const CalendarDate date(2004, 7, 15, 13, 30, 45);
  EXPECT_GT(date.dateByAdding(kMost, kMost, kMost, 0, 0, 0).timeIntervalSinceDate(date), 0.0);
  EXPECT_LT(date.dateByAdding(kLeast, kLeast, kLeast, 0, 0, 0).timeIntervalSinceDate(date), 0.0);
}

TEST_F(CalendarDateInZone, AnIntervalIsPositiveWhenThisDateIsLater) {
  const CalendarDate earlier(2004, 7, 15, 13, 30, 45);
  const CalendarDate later(2004, 7, 15, 13, 30, 47);
  EXPECT_EQ(later.timeIntervalSinceDate(earlier), 2.0);
  EXPECT_EQ(earlier.timeIntervalSinceDate(later), -2.0);
}

TEST_F(CalendarDateInZone, AddingMonthsStopsAtTheLastDayOfAShorterMonth) {
  useZone("UTC");
  const CalendarDate date(2004, 1, 31, 12, 0, 0);
  EXPECT_EQ(date.dateByAdding(0, 1, 0, 0, 0, 0).isoString(), "2004-02-29T12:00:00");
  EXPECT_EQ(date.dateByAdding(1, 1, 0, 0, 0, 0).isoString(), "2005-02-28T12:00:00");
  EXPECT_EQ(date.dateByAdding(0, -2, 0, 0, 0, 0).isoString(), "2003-11-30T12:00:00");
}

TEST_F(CalendarDateInZone, OfCenturiesEachFourthHasALeapYear) {
  useZone("UTC");
  const auto aMonthAfter = [](int year) {
    return CalendarDate(year, 1, 31, 0, 0, 0).dateByAdding(0, 1, 0, 0, 0, 0).dayOfMonth();
  };
  EXPECT_EQ(aMonthAfter(2000), 29);
  EXPECT_EQ(aMonthAfter(1900), 28);
  EXPECT_EQ(aMonthAfter(2100), 28);
  EXPECT_EQ(aMonthAfter(2004), 29);
}

TEST_F(CalendarDateInZone, AddingDaysAndTimesCarries) {
  useZone("UTC");
  const CalendarDate date(2004, 12, 31, 23, 59, 59);
  EXPECT_EQ(date.dateByAdding(0, 0, 0, 0, 0, 1).isoString(), "2005-01-01T00:00:00");
  EXPECT_EQ(date.dateByAdding(0, 0, -31, 0, 0, 0).isoString(), "2004-11-30T23:59:59");
  EXPECT_EQ(date.dateByAdding(0, 0, 0, 0, 1, 0).isoString(), "2005-01-01T00:00:59");
  EXPECT_EQ(date.dateByAdding(0, 0, 0, -24, 0, 0).isoString(), "2004-12-30T23:59:59");
}

}  // namespace
}  // namespace zq
