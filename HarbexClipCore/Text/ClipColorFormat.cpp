#include "HarbexClipCore/Text/ClipColorFormat.hpp"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "HarbexClipCore/Text/ClipOKLCH.hpp"

namespace harbex {

namespace {

bool isSpace(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f' || c == '\v';
}

double clamped(double value) {
    if (!(value > 0)) return 0;  // NaN counts as 0
    return value > 1 ? 1 : value;
}

// std::round rounds halves away from zero, as the text forms require.
long byteOf(double channel) { return std::lround(clamped(channel) * 255); }

// printf would write "-0.0" for a tiny negative value; nobody wants to read that.
double noNegativeZero(double value) { return value == 0 ? 0.0 : value; }

std::string formatted(const char* format, auto... values) {
    char buffer[96];
    const int length = std::snprintf(buffer, sizeof buffer, format, values...);
    return std::string(buffer, static_cast<std::size_t>(std::max(length, 0)));
}

std::string hexText(double r, double g, double b, double alpha) {
    std::string text = formatted("#%02lX%02lX%02lX", byteOf(r), byteOf(g), byteOf(b));
    if (alpha < 1) text += formatted("%02lX", byteOf(alpha));
    return text;
}

std::string rgbText(double r, double g, double b, double alpha) {
    if (alpha >= 1) return formatted("rgb(%ld, %ld, %ld)", byteOf(r), byteOf(g), byteOf(b));
    return formatted("rgba(%ld, %ld, %ld, %.2f)", byteOf(r), byteOf(g), byteOf(b), alpha);
}

std::string hslText(double r, double g, double b) {
    const ClipHSL hsl = hslFromSRGB(r, g, b);
    long hue = std::lround(hsl.h);
    if (hue == 360) hue = 0;  // 359.6° reads as red, not as a 360 nobody writes
    return formatted("hsl(%ld, %ld%%, %ld%%)", hue, std::lround(hsl.s * 100),
                     std::lround(hsl.l * 100));
}

std::string oklchText(double r, double g, double b, double alpha) {
    const ClipOKLCH::Value value = ClipOKLCH::fromSRGB(r, g, b);
    // Compare the hue as it will print, so 359.96 becomes 0.0 rather than 360.0.
    double hue = std::round(value.h * 10) / 10;
    if (hue >= 360) hue = 0;
    std::string text = "oklch(" + formatted("%.1f%% %.3f %.1f", noNegativeZero(value.l * 100),
                                            noNegativeZero(value.c), noNegativeZero(hue));
    if (alpha < 1) text += formatted(" / %.2f", alpha);
    return text + ")";
}

}  // namespace

std::string_view colorFormatLabel(ClipColorFormat format) {
    switch (format) {
        case ClipColorFormat::hex: return "HEX";
        case ClipColorFormat::rgb: return "RGB";
        case ClipColorFormat::hsl: return "HSL";
        case ClipColorFormat::oklch: return "OKLCH";
    }
    return {};
}

std::optional<ClipColorFormat> colorFormatOf(std::string_view text) {
    while (!text.empty() && isSpace(text.front())) text.remove_prefix(1);
    auto startsWith = [&](std::string_view prefix) {
        if (text.size() < prefix.size()) return false;
        for (std::size_t i = 0; i < prefix.size(); ++i) {
            char c = text[i];
            if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
            if (c != prefix[i]) return false;
        }
        return true;
    };
    if (startsWith("#")) return ClipColorFormat::hex;
    if (startsWith("rgb")) return ClipColorFormat::rgb;
    if (startsWith("hsl")) return ClipColorFormat::hsl;
    if (startsWith("oklch")) return ClipColorFormat::oklch;
    return std::nullopt;
}

ClipHSL hslFromSRGB(double r, double g, double b) {
    r = clamped(r);
    g = clamped(g);
    b = clamped(b);
    const double max = std::max({r, g, b});
    const double min = std::min({r, g, b});
    const double l = (max + min) / 2;
    if (max == min) return {0, 0, l};
    const double d = max - min;
    const double s = l > 0.5 ? d / (2 - max - min) : d / (max + min);
    double h = 0;
    if (max == r) {
        h = (g - b) / d + (g < b ? 6 : 0);
    } else if (max == g) {
        h = (b - r) / d + 2;
    } else {
        h = (r - g) / d + 4;
    }
    return {h * 60, s, l};
}

std::string colorText(double r, double g, double b, double alpha, ClipColorFormat format) {
    r = clamped(r);
    g = clamped(g);
    b = clamped(b);
    alpha = std::isnan(alpha) ? 1 : clamped(alpha);
    switch (format) {
        case ClipColorFormat::hex: return hexText(r, g, b, alpha);
        case ClipColorFormat::rgb: return rgbText(r, g, b, alpha);
        case ClipColorFormat::hsl: return hslText(r, g, b);
        case ClipColorFormat::oklch: return oklchText(r, g, b, alpha);
    }
    return {};
}

}  // namespace harbex
