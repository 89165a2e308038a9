#include "HarbexClipCore/Text/ClipDayGroups.hpp"

namespace harbex {

std::string_view rowGroupTitle(ClipRowGroup group) {
    switch (group) {
        case ClipRowGroup::pinned: return "Pinned";
        case ClipRowGroup::today: return "Today";
        case ClipRowGroup::yesterday: return "Yesterday";
        case ClipRowGroup::thisWeek: return "Earlier this week";
        case ClipRowGroup::earlier: return "Earlier";
    }
    return {};
}

ClipDayGroups::ClipDayGroups(Date now, const Calendar& calendar)
    : today_(calendar.startOfDay(now)),
      yesterday_(calendar.addingDays(today_, -1)),
      week_(calendar.startOfWeek(now)) {}

ClipRowGroup ClipDayGroups::groupOf(Date date) const {
    if (date >= today_) return ClipRowGroup::today;
    if (date >= yesterday_) return ClipRowGroup::yesterday;
    if (date >= week_) return ClipRowGroup::thisWeek;
    return ClipRowGroup::earlier;
}

}  // namespace harbex
