#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "HarbexClipCore/Support/Calendar.hpp"
#include "HarbexClipCore/Text/ClipTimeWord.hpp"

namespace harbex {
namespace {

TEST(ClipTimeWordTests, ExtractsWholeWordPhrasesLongestFirst) {
    struct Case {
        std::string query;
        std::string rest;
        std::optional<ClipTimeWord> timeWord;
    };
    const std::vector<Case> cases = {
        {"notes last week", "notes ", ClipTimeWord::lastWeek},
        {"notes lastweek", "notes lastweek", std::nullopt},
        {"yesterday", "", ClipTimeWord::yesterday},
        {"invoice today draft", "invoice  draft", ClipTimeWord::today},
        {"Notes LAST Week", "Notes ", ClipTimeWord::lastWeek},  // cut as typed
        {"todays notes", "todays notes", std::nullopt},
        {"notes fromtoday", "notes fromtoday", std::nullopt},
        {"todays today", "todays ", ClipTimeWord::today},  // a later whole-word match counts
        {"this month and today", " and today", ClipTimeWord::thisMonth},
        {"today this week", "today ", ClipTimeWord::thisWeek},
        {"yesterday this week", " this week", ClipTimeWord::yesterday},
        {"this  week", "this  week", std::nullopt},
        {"Ärger THIS WEEK", "Ärger ", ClipTimeWord::thisWeek},
        {"to\xE2\x84\xAA"
         "ay last wee\xE2\x84\xAA",
         "to\xE2\x84\xAA"
         "ay ",
         ClipTimeWord::lastWeek},  // the Kelvin sign lower-cases to k
        {"", "", std::nullopt},
    };
    for (const Case& c : cases) {
        const ClipTimeWordMatch match = extractTimeWord(c.query);
        EXPECT_EQ(match.rest, c.rest) << c.query;
        EXPECT_EQ(match.timeWord, c.timeWord) << c.query;
    }
}

Date utc(int year, int month, int day, int hour = 0, int minute = 0, int second = 0) {
    // Days from civil (proleptic Gregorian), so that tests need no calendar to make dates.
    const int y = year - (month <= 2 ? 1 : 0);
    const int era = (y >= 0 ? y : y - 399) / 400;
    const int yoe = y - era * 400;
    const int doy = (153 * (month + (month > 2 ? -3 : 9)) + 2) / 5 + day - 1;
    const int doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
    const double days = era * 146097.0 + doe - 719468.0;
    return Date::fromUnix(days * 86400.0 + hour * 3600.0 + minute * 60.0 + second);
}

TEST(ClipTimeWordTests, RangesFollowTheCalendarAcrossDaylightSaving) {
    // New York: summer time ends on Sunday 2 November 2025 (UTC-4 before, UTC-5 after).
    const Calendar sundayFirst("America/New_York", "en_US");
    const Calendar mondayFirst("America/New_York", "de_DE");
    ASSERT_EQ(sundayFirst.firstWeekday(), 1);
    ASSERT_EQ(mondayFirst.firstWeekday(), 2);

    // Monday 3 November 2025, 09:30 local (UTC-5).
    const Date now = utc(2025, 11, 3, 14, 30);
    struct Case {
        const Calendar* calendar;
        ClipTimeWord timeWord;
        Date start;
        Date end;
    };
    const std::vector<Case> cases = {
        {&sundayFirst, ClipTimeWord::today, utc(2025, 11, 3, 5), now + 1.0},
        // Sunday 2 November was 25 hours long.
        {&sundayFirst, ClipTimeWord::yesterday, utc(2025, 11, 2, 4), utc(2025, 11, 3, 5)},
        {&sundayFirst, ClipTimeWord::thisWeek, utc(2025, 11, 2, 4), now + 1.0},
        // Last week began on Sunday 26 October, still on summer time.
        {&sundayFirst, ClipTimeWord::lastWeek, utc(2025, 10, 26, 4), utc(2025, 11, 2, 4)},
        {&mondayFirst, ClipTimeWord::thisWeek, utc(2025, 11, 3, 5), now + 1.0},
        {&mondayFirst, ClipTimeWord::lastWeek, utc(2025, 10, 27, 4), utc(2025, 11, 3, 5)},
        {&sundayFirst, ClipTimeWord::thisMonth, utc(2025, 11, 1, 4), now + 1.0},
    };
    for (const Case& c : cases) {
        const ClipDateRange range = dateRange(c.timeWord, now, *c.calendar);
        EXPECT_EQ(range.start, c.start) << enumName(c.timeWord);
        EXPECT_EQ(range.end, c.end) << enumName(c.timeWord);
    }
}

TEST(ClipTimeWordTests, RangesIncludeTheStartAndThisVeryMoment) {
    const Calendar calendar("Europe/Berlin", "de_DE");
    const Date now = utc(2026, 3, 1, 0, 0, 0);  // 01:00 local on Sunday, 1 March
    const ClipDateRange today = dateRange(ClipTimeWord::today, now, calendar);
    EXPECT_TRUE(today.contains(today.start));
    EXPECT_TRUE(today.contains(now));
    EXPECT_FALSE(today.contains(today.start - 0.001));
    const ClipDateRange yesterday = dateRange(ClipTimeWord::yesterday, now, calendar);
    EXPECT_FALSE(yesterday.contains(today.start));
    EXPECT_TRUE(yesterday.contains(today.start - 0.001));
    // Monday-first: the week began on 23 February; the month only an hour ago.
    EXPECT_EQ(dateRange(ClipTimeWord::thisWeek, now, calendar).start, utc(2026, 2, 22, 23));
    EXPECT_EQ(dateRange(ClipTimeWord::thisMonth, now, calendar).start, utc(2026, 2, 28, 23));
}

}  // namespace
}  // namespace harbex
