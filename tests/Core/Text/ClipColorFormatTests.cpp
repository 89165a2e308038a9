#include "HarbexClipCore/Text/ClipColorFormat.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>

namespace harbex {
namespace {

struct TextCase {
    RGBA color;
    ClipColorFormat format;
    const char* expected;
};

constexpr double k94 = 94 / 255.0;
constexpr double k92 = 92 / 255.0;
constexpr double k230 = 230 / 255.0;

const TextCase kTextCases[] = {
    // The same indigo in every form, opaque and half transparent.
    {{k94, k92, k230, 1}, ClipColorFormat::hex, "#5E5CE6"},
    {{k94, k92, k230, 1}, ClipColorFormat::rgb, "rgb(94, 92, 230)"},
    {{k94, k92, k230, 1}, ClipColorFormat::hsl, "hsl(241, 73%, 63%)"},
    {{k94, k92, k230, 1}, ClipColorFormat::oklch, "oklch(55.6% 0.203 278.1)"},
    {{k94, k92, k230, 0.5}, ClipColorFormat::hex, "#5E5CE680"},
    {{k94, k92, k230, 0.5}, ClipColorFormat::rgb, "rgba(94, 92, 230, 0.50)"},
    {{k94, k92, k230, 0.5}, ClipColorFormat::hsl, "hsl(241, 73%, 63%)"},  // no alpha in HSL
    {{k94, k92, k230, 0.5}, ClipColorFormat::oklch, "oklch(55.6% 0.203 278.1 / 0.50)"},
    // Alpha 0.999 is not opaque: every form but HSL says so, rounded up.
    {{k94, k92, k230, 0.999}, ClipColorFormat::hex, "#5E5CE6FF"},
    {{k94, k92, k230, 0.999}, ClipColorFormat::rgb, "rgba(94, 92, 230, 1.00)"},
    {{k94, k92, k230, 0.999}, ClipColorFormat::oklch, "oklch(55.6% 0.203 278.1 / 1.00)"},
    // Greys: hue 0 in HSL and OKLCH.
    {{1, 1, 1, 1}, ClipColorFormat::oklch, "oklch(100.0% 0.000 0.0)"},
    {{0, 0, 0, 1}, ClipColorFormat::oklch, "oklch(0.0% 0.000 0.0)"},
    {{0.5, 0.5, 0.5, 1}, ClipColorFormat::hsl, "hsl(0, 0%, 50%)"},
    {{0.5, 0.5, 0.5, 1}, ClipColorFormat::oklch, "oklch(59.8% 0.000 0.0)"},
    // Channels outside 0…1 are clipped in every form.
    {{1.5, -0.2, 0.5, 1}, ClipColorFormat::hex, "#FF0080"},
    {{1.5, -0.2, 0.5, 1}, ClipColorFormat::rgb, "rgb(255, 0, 128)"},
    {{1.5, -0.2, 0.5, 1}, ClipColorFormat::hsl, "hsl(330, 100%, 50%)"},
    {{2, 2, 2, 1.5}, ClipColorFormat::hex, "#FFFFFF"},
    {{0, 0, 0, -1}, ClipColorFormat::hex, "#00000000"},
    // Halves round away from zero: 0.5 × 255 = 127.5.
    {{0.5, 0.5, 0.5, 0.5}, ClipColorFormat::hex, "#80808080"},
    // Primaries: each branch of the HSL hue.
    {{1, 0, 0, 1}, ClipColorFormat::hsl, "hsl(0, 100%, 50%)"},
    {{0, 1, 0, 1}, ClipColorFormat::hsl, "hsl(120, 100%, 50%)"},
    {{0, 0, 1, 1}, ClipColorFormat::hsl, "hsl(240, 100%, 50%)"},
    {{1, 0, 1, 1}, ClipColorFormat::hsl, "hsl(300, 100%, 50%)"},
    {{1, 0, 0.5, 1}, ClipColorFormat::hsl, "hsl(330, 100%, 50%)"},
    {{0.9, 0.8, 0.7, 1}, ClipColorFormat::hsl, "hsl(30, 50%, 80%)"},
    // 359.7° prints as 0, not as 360.
    {{1, 0, 1 / 255.0, 1}, ClipColorFormat::hsl, "hsl(0, 100%, 50%)"},
    {{1, 0, 0, 1}, ClipColorFormat::oklch, "oklch(62.8% 0.258 29.2)"},
};

TEST(ClipColorFormatTests, WritesEachForm) {
    for (const auto& test : kTextCases) {
        EXPECT_EQ(colorText(test.color, test.format), test.expected)
            << test.color.r << " " << test.color.g << " " << test.color.b << " " << test.color.a;
    }
}

TEST(ClipColorFormatTests, EveryByteRoundTripsThroughHex) {
    for (int value = 0; value <= 255; ++value) {
        char expected[8];
        std::snprintf(expected, sizeof expected, "#%02X%02X%02X", value, 255 - value, value);
        EXPECT_EQ(
            colorText(value / 255.0, (255 - value) / 255.0, value / 255.0, 1, ClipColorFormat::hex),
            expected);
    }
}

TEST(ClipColorFormatTests, TellsTheFormOfAColourText) {
    struct Case {
        const char* text;
        std::optional<ClipColorFormat> expected;
    };
    const Case cases[] = {
        {"#5E5CE6", ClipColorFormat::hex},
        {"#fff", ClipColorFormat::hex},
        {"  RGB(1,2,3)", ClipColorFormat::rgb},
        {"\n\trgba(1, 2, 3, 0.5)\n", ClipColorFormat::rgb},
        {"HSL(1, 2%, 3%)", ClipColorFormat::hsl},
        {"hsla(1 2% 3%)", ClipColorFormat::hsl},
        {"OKLCH(55% 0.2 270)", ClipColorFormat::oklch},
        {"color: #fff", std::nullopt},
        {"", std::nullopt},
        {"   ", std::nullopt},
        {"ok", std::nullopt},
        {"lab(50% 40 30)", std::nullopt},
        {"red", std::nullopt},
    };
    for (const auto& test : cases) {
        EXPECT_EQ(colorFormatOf(test.text), test.expected) << '"' << test.text << '"';
    }
}

}  // namespace
}  // namespace harbex
