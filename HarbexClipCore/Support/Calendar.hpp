#pragma once

#include <memory>
#include <string>

#include "HarbexClipCore/Support/Date.hpp"

#include <unicode/uversion.h>

U_NAMESPACE_BEGIN
class Calendar;
U_NAMESPACE_END

namespace harbex {

// Calendar arithmetic in the user's time zone and locale, over ICU. Day boundaries are the
// calendar's own (a day across a daylight-saving change is 23 or 25 hours long), never 24-hour
// steps. Thread: any; each call works on its own clone of the ICU calendar.
class Calendar {
public:
    // An empty zone means the system's default zone; an empty locale the default locale, which
    // decides the first day of the week.
    explicit Calendar(const std::string& zoneID = {}, const std::string& locale = {});
    ~Calendar();
    Calendar(const Calendar& other);
    Calendar& operator=(const Calendar& other);

    Date startOfDay(Date date) const;
    // `days` calendar days later (or earlier when negative), at the same wall-clock time.
    Date addingDays(Date date, int days) const;
    // The start of the week (of year) that holds `date`, by the locale's first weekday.
    Date startOfWeek(Date date) const;
    Date startOfMonth(Date date) const;

    // 1 = Sunday … 7 = Saturday, as the locale says.
    int firstWeekday() const;
    std::string zoneID() const;

private:
    std::unique_ptr<icu::Calendar> prototype_;
};

}  // namespace harbex
