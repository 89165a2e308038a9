#include "HarbexClipCore/Support/Calendar.hpp"

#include <unicode/calendar.h>
#include <unicode/locid.h>
#include <unicode/timezone.h>

#include <cassert>

namespace harbex {

namespace {

constexpr double kMillis = 1000.0;

UDate toUDate(Date date) { return date.unixSeconds() * kMillis; }
Date fromUDate(UDate value) { return Date::fromUnix(value / kMillis); }

void clearTimeOfDay(icu::Calendar& calendar) {
    calendar.set(UCAL_HOUR_OF_DAY, 0);
    calendar.set(UCAL_MINUTE, 0);
    calendar.set(UCAL_SECOND, 0);
    calendar.set(UCAL_MILLISECOND, 0);
}

}  // namespace

Calendar::Calendar(const std::string& zoneID, const std::string& locale) {
    UErrorCode status = U_ZERO_ERROR;
    icu::TimeZone* zone = zoneID.empty()
                              ? icu::TimeZone::createDefault()
                              : icu::TimeZone::createTimeZone(icu::UnicodeString::fromUTF8(zoneID));
    const icu::Locale where =
        locale.empty() ? icu::Locale::getDefault() : icu::Locale(locale.c_str());
    // createInstance adopts the zone.
    prototype_.reset(icu::Calendar::createInstance(zone, where, status));
    if (U_FAILURE(status) || !prototype_) {
        status = U_ZERO_ERROR;
        prototype_.reset(icu::Calendar::createInstance(icu::TimeZone::getGMT()->clone(),
                                                       icu::Locale::getRoot(), status));
    }
    assert(prototype_ && "ICU could not make even a Gregorian calendar in UTC");
}

Calendar::~Calendar() = default;
Calendar::Calendar(const Calendar& other) : prototype_(other.prototype_->clone()) {}
Calendar& Calendar::operator=(const Calendar& other) {
    if (this != &other) prototype_.reset(other.prototype_->clone());
    return *this;
}

Date Calendar::startOfDay(Date date) const {
    std::unique_ptr<icu::Calendar> calendar(prototype_->clone());
    UErrorCode status = U_ZERO_ERROR;
    calendar->setTime(toUDate(date), status);
    clearTimeOfDay(*calendar);
    return fromUDate(calendar->getTime(status));
}

Date Calendar::addingDays(Date date, int days) const {
    std::unique_ptr<icu::Calendar> calendar(prototype_->clone());
    UErrorCode status = U_ZERO_ERROR;
    calendar->setTime(toUDate(date), status);
    calendar->add(UCAL_DATE, days, status);
    return fromUDate(calendar->getTime(status));
}

Date Calendar::startOfWeek(Date date) const {
    std::unique_ptr<icu::Calendar> calendar(prototype_->clone());
    UErrorCode status = U_ZERO_ERROR;
    calendar->setTime(toUDate(date), status);
    const int weekday = calendar->get(UCAL_DAY_OF_WEEK, status);
    const int back = (weekday - static_cast<int>(calendar->getFirstDayOfWeek(status)) + 7) % 7;
    calendar->add(UCAL_DATE, -back, status);
    clearTimeOfDay(*calendar);
    return fromUDate(calendar->getTime(status));
}

Date Calendar::startOfMonth(Date date) const {
    std::unique_ptr<icu::Calendar> calendar(prototype_->clone());
    UErrorCode status = U_ZERO_ERROR;
    calendar->setTime(toUDate(date), status);
    calendar->set(UCAL_DATE, 1);
    clearTimeOfDay(*calendar);
    return fromUDate(calendar->getTime(status));
}

int Calendar::firstWeekday() const {
    UErrorCode status = U_ZERO_ERROR;
    return static_cast<int>(prototype_->getFirstDayOfWeek(status));
}

std::string Calendar::zoneID() const {
    icu::UnicodeString id;
    prototype_->getTimeZone().getID(id);
    std::string out;
    id.toUTF8String(out);
    return out;
}

}  // namespace harbex
