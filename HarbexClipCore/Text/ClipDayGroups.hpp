#pragma once

#include <array>
#include <string_view>
#include <utility>

#include "HarbexClipCore/Support/Calendar.hpp"
#include "HarbexClipCore/Support/Date.hpp"
#include "HarbexClipCore/Support/EnumNames.hpp"

namespace harbex {

// The day groups that the panel and the library head their lists with, in display order.
enum class ClipRowGroup { pinned, today, yesterday, thisWeek, earlier };

template <>
struct EnumNames<ClipRowGroup> {
    static constexpr std::array values{
        std::pair{ClipRowGroup::pinned, std::string_view("pinned")},
        std::pair{ClipRowGroup::today, std::string_view("today")},
        std::pair{ClipRowGroup::yesterday, std::string_view("yesterday")},
        std::pair{ClipRowGroup::thisWeek, std::string_view("thisWeek")},
        std::pair{ClipRowGroup::earlier, std::string_view("earlier")},
    };
};

// "Pinned", "Today", "Yesterday", "Earlier this week", "Earlier".
std::string_view rowGroupTitle(ClipRowGroup group);

// The calendar days around one moment, computed once and then asked for many dates. Day
// boundaries are the calendar's (a day across a clock change is 23 or 25 hours), the week starts
// on the locale's first weekday. Copies dated in the future count as today. Thread: any.
class ClipDayGroups {
public:
    ClipDayGroups(Date now, const Calendar& calendar);

    // `today`, `yesterday`, `thisWeek` or `earlier`; never `pinned`.
    ClipRowGroup groupOf(Date date) const;
    Date startOfToday() const { return today_; }

private:
    Date today_;
    Date yesterday_;
    Date week_;
};

}  // namespace harbex
