#pragma once

#include <compare>
#include <limits>

namespace harbex {

// A moment as seconds since 1 January 2001 00:00 UTC: exactly the persisted form, so a date
// survives a save and a load bit for bit.
struct Date {
    double seconds = 0;

    static constexpr double kUnixOffset = 978307200.0;  // 1970 → 2001

    static Date fromUnix(double unixSeconds) { return Date{unixSeconds - kUnixOffset}; }
    double unixSeconds() const { return seconds + kUnixOffset; }

    // The furthest representable date: a pause "until I resume" is stored as this.
    static constexpr Date distantFuture() { return Date{63113904000.0}; }

    Date operator+(double interval) const { return Date{seconds + interval}; }
    Date operator-(double interval) const { return Date{seconds - interval}; }
    double operator-(Date other) const { return seconds - other.seconds; }

    friend auto operator<=>(Date, Date) = default;
};

}  // namespace harbex
