#pragma once

#include <array>
#include <string>
#include <string_view>
#include <utility>

#include "HarbexClipCore/Model/ClipItem.hpp"
#include "HarbexClipCore/Support/Calendar.hpp"
#include "HarbexClipCore/Support/Date.hpp"
#include "HarbexClipCore/Support/EnumNames.hpp"

namespace harbex {

// The row headers of the panel, in display order.
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

// One row of the panel's list: a header, or a copy. `item` points into the model's own copy of
// the history and stays valid until the model next changes its rows.
struct ClipPanelRow {
    enum class Content { header, item };

    std::string id;  // the copy's id, or "header.<group>"
    Content content = Content::header;
    ClipRowGroup group = ClipRowGroup::today;  // the header's group, or the group the copy is in
    const ClipItem* item = nullptr;            // set for items only

    bool isHeader() const { return content == Content::header; }
};

}  // namespace harbex
