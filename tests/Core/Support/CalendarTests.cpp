#include "HarbexClipCore/Support/Calendar.hpp"

#include <gtest/gtest.h>

namespace harbex {
namespace {

// 2024-03-31 02:00 in Berlin does not exist: clocks jump to 03:00.
const Date kBerlinSpringMorning = Date::fromUnix(1711872000);  // 2024-03-31 08:00 UTC = 10:00 CEST

TEST(CalendarTests, DaysAcrossADaylightSavingChangeAreCalendarDays) {
    const Calendar berlin("Europe/Berlin", "de_DE");
    const Date start = berlin.startOfDay(kBerlinSpringMorning);
    EXPECT_EQ(start, Date::fromUnix(1711839600));  // 2024-03-30 23:00 UTC = midnight CET
    const Date next = berlin.addingDays(start, 1);
    EXPECT_EQ(next - start, 23 * 3600.0);
    EXPECT_EQ(berlin.startOfDay(berlin.addingDays(kBerlinSpringMorning, -1)),
              Date::fromUnix(1711753200));  // the day before, 24 hours long
}

TEST(CalendarTests, MidnightBelongsToTheDayItStarts) {
    const Calendar utc("UTC", "en_GB");
    const Date midnight = Date::fromUnix(1700006400);  // 2023-11-15 00:00 UTC
    EXPECT_EQ(utc.startOfDay(midnight), midnight);
    EXPECT_EQ(utc.startOfDay(midnight - 0.001), midnight - 86400);
}

TEST(CalendarTests, TheWeekStartsOnTheLocalesFirstWeekday) {
    const Date wednesday = Date::fromUnix(1700049600);  // 2023-11-15 12:00 UTC, a Wednesday
    const Calendar us("UTC", "en_US");
    const Calendar germany("UTC", "de_DE");
    EXPECT_EQ(us.firstWeekday(), 1);
    EXPECT_EQ(germany.firstWeekday(), 2);
    EXPECT_EQ(us.startOfWeek(wednesday), Date::fromUnix(1699747200));       // Sunday 12th
    EXPECT_EQ(germany.startOfWeek(wednesday), Date::fromUnix(1699833600));  // Monday 13th
    // A Sunday is the first day of its week in the US, the last in Germany.
    const Date sunday = Date::fromUnix(1699790400);
    EXPECT_EQ(us.startOfWeek(sunday), Date::fromUnix(1699747200));
    EXPECT_EQ(germany.startOfWeek(sunday), Date::fromUnix(1699228800));
}

TEST(CalendarTests, MonthStartsAreLocalMidnights) {
    const Calendar newYork("America/New_York", "en_US");
    const Date date = Date::fromUnix(1700049600);                       // 2023-11-15
    EXPECT_EQ(newYork.startOfMonth(date), Date::fromUnix(1698811200));  // Nov 1 00:00 EDT
    EXPECT_EQ(newYork.zoneID(), "America/New_York");
}

TEST(CalendarTests, AnUnknownZoneFallsBackInsteadOfFailing) {
    const Calendar odd("Not/AZone", "en_US");
    const Date date = Date::fromUnix(1700049600);
    EXPECT_LE(odd.startOfDay(date), date);
    EXPECT_GT(odd.startOfDay(date), date - 86400);
}

}  // namespace
}  // namespace harbex
