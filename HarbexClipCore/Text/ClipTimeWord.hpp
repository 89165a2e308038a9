#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "HarbexClipCore/Support/Calendar.hpp"
#include "HarbexClipCore/Support/Date.hpp"
#include "HarbexClipCore/Support/EnumNames.hpp"

namespace harbex {

// A phrase in a query that limits the results to a stretch of time. The persisted name of each
// case is the phrase itself.
enum class ClipTimeWord { today, yesterday, thisWeek, lastWeek, thisMonth };

template <>
struct EnumNames<ClipTimeWord> {
    static constexpr std::array values{
        std::pair{ClipTimeWord::today, std::string_view("today")},
        std::pair{ClipTimeWord::yesterday, std::string_view("yesterday")},
        std::pair{ClipTimeWord::thisWeek, std::string_view("this week")},
        std::pair{ClipTimeWord::lastWeek, std::string_view("last week")},
        std::pair{ClipTimeWord::thisMonth, std::string_view("this month")},
    };
};

// A stretch of time that includes `start` and excludes `end`.
struct ClipDateRange {
    Date start;
    Date end;

    bool contains(Date date) const { return start <= date && date < end; }

    friend bool operator==(const ClipDateRange&, const ClipDateRange&) = default;
};

// A query with its time word cut out.
struct ClipTimeWordMatch {
    std::string rest;  // the query as typed, without the phrase
    std::optional<ClipTimeWord> timeWord;

    friend bool operator==(const ClipTimeWordMatch&, const ClipTimeWordMatch&) = default;
};

// Finds the first time word in `query`, ignoring case, trying longer phrases first. A phrase
// counts only as whole words: at the start or after a space, and at the end or before a space.
// Without one, the query comes back unchanged. Thread: any.
ClipTimeWordMatch extractTimeWord(std::string_view query);

// The dates a time word stands for at `now` in `calendar`'s zone and week. Ranges that reach
// the present end one second after `now`, so that a copy made this very moment counts.
// Thread: any.
ClipDateRange dateRange(ClipTimeWord timeWord, Date now, const Calendar& calendar);

}  // namespace harbex
