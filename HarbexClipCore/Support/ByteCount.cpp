#include "HarbexClipCore/Support/ByteCount.hpp"

#include <array>
#include <cmath>
#include <cstdio>
#include <string_view>

namespace harbex {

namespace {

struct Unit {
    std::string_view name;
    int decimals;
};

constexpr std::array<Unit, 6> kUnits{Unit{"KB", 0}, Unit{"MB", 1}, Unit{"GB", 2},
                                     Unit{"TB", 2}, Unit{"PB", 2}, Unit{"EB", 2}};

// Rounds half away from zero, as sizes are shown, rather than printf's round-half-even.
double rounded(double value, int decimals) {
    const double scale = std::pow(10.0, decimals);
    return std::round(value * scale) / scale;
}

std::string formatted(double value, int decimals) {
    char buffer[48];
    std::snprintf(buffer, sizeof buffer, "%.*f", decimals, value);
    std::string text(buffer);
    if (text.find('.') != std::string::npos) {
        while (text.back() == '0') text.pop_back();
        if (text.back() == '.') text.pop_back();
    }
    return text;
}

}  // namespace

std::string formatByteCount(std::int64_t byteCount) {
    if (byteCount == 0) return "Zero KB";
    const std::string sign = byteCount < 0 ? "-" : "";
    // Through double, so that the most negative count has a magnitude too.
    const double magnitude = std::fabs(static_cast<double>(byteCount));
    if (magnitude == 1) return sign + "1 byte";
    if (magnitude < 1000) return sign + formatted(magnitude, 0) + " bytes";

    double value = magnitude;
    for (std::size_t i = 0; i < kUnits.size(); ++i) {
        value /= 1000.0;
        const double shown = rounded(value, kUnits[i].decimals);
        // 999,999 bytes rounds to 1,000 KB, which reads better as 1 MB.
        if (shown < 1000.0 || i + 1 == kUnits.size()) {
            return sign + formatted(shown, kUnits[i].decimals) + " " + std::string(kUnits[i].name);
        }
    }
    return sign + formatted(magnitude, 0) + " bytes";  // unreachable: EB takes every int64
}

}  // namespace harbex
