#include "HarbexClipCore/Text/ColorParser.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>

#include "HarbexClipCore/Text/ClipColorFormat.hpp"
#include "HarbexClipCore/Text/ClipOKLCH.hpp"

namespace harbex {
namespace {

// Compared through the eight-digit hex form, which is what a user ever sees of a parsed colour.
std::string hexOf(const RGBA& color) {
    std::string text = colorText(color.r, color.g, color.b, 0.5, ClipColorFormat::hex);
    char alpha[3];
    std::snprintf(alpha, sizeof alpha, "%02lX", std::lround(color.a * 255));
    return text.substr(0, 7) + alpha;
}

struct Case {
    const char* text;
    const char* expected;  // #RRGGBBAA
};

const Case kAccepted[] = {
    // Hex in all four lengths, any case, with white space around.
    {"#5E5CE6", "#5E5CE6FF"},
    {"#5e5ce6", "#5E5CE6FF"},
    {"#fff", "#FFFFFFFF"},
    {"#F0A8", "#FF00AA88"},
    {"#11223344", "#11223344"},
    {"  #abc\n", "#AABBCCFF"},
    // rgb() and rgba(), both syntaxes, percentages, alpha as number or percentage.
    {"rgb(94, 92, 230)", "#5E5CE6FF"},
    {"RGB(1,2,3)", "#010203FF"},
    {"  RGB(1,2,3)", "#010203FF"},
    {"rgba(94, 92, 230, 0.5)", "#5E5CE680"},
    {"rgb(94 92 230)", "#5E5CE6FF"},
    {"rgb(94 92 230 / 50%)", "#5E5CE680"},
    {"rgba( 94 92 230 / .5 )", "#5E5CE680"},
    {"rgb(100%, 0%, 50%)", "#FF0080FF"},
    {"rgb(300, -20, 127.5)", "#FF0080FF"},  // clamped, as CSS does
    {"rgb(1e2 0 0)", "#640000FF"},
    {"rgba(0,0,0,2)", "#000000FF"},
    // hsl() with every angle unit.
    {"hsl(241, 73%, 63%)", "#5E5CE6FF"},
    {"hsl(0 100% 50%)", "#FF0000FF"},
    {"hsl(120deg 100% 50%)", "#00FF00FF"},
    {"hsl(0.5turn 100% 50%)", "#00FFFFFF"},
    {"hsl(3.14159265rad 100% 50%)", "#00FFFFFF"},
    {"hsl(400grad 100% 50%)", "#FF0000FF"},
    {"hsl(-120, 100%, 50%)", "#0000FFFF"},
    {"hsl(480, 100%, 50%)", "#00FF00FF"},
    {"hsla(240, 100%, 50%, 0.25)", "#0000FF40"},
    {"hsl(240 100% 50% / 25%)", "#0000FF40"},
    {"hsl(0, 0%, 100%)", "#FFFFFFFF"},
    {"hsl(30 50 80)", "#E6CCB3FF"},
    // oklch(): L as a percentage or a fraction, optional alpha, gamut clipping.
    {"oklch(55.6% 0.203 278.1)", "#5E5CE6FF"},
    {"oklch(0.556 0.203 278.1)", "#5E5CE6FF"},
    {"OKLCH(55.6% 0.203 278.1deg / 0.5)", "#5E5CE680"},
    {"oklch(100% 0 0)", "#FFFFFFFF"},
    {"oklch(0% 0 0)", "#000000FF"},
    {"oklch(62.8% 0.2577 29.23)", "#FF0000FF"},
    {"oklch(70% 0.4 150)", "#00D600FF"},  // far outside sRGB: clipped channel by channel
};

TEST(ColorParserTests, ReadsCSSColourTexts) {
    for (const auto& test : kAccepted) {
        const auto color = ColorParser::parse(test.text);
        ASSERT_TRUE(color) << test.text;
        EXPECT_EQ(hexOf(*color), test.expected) << test.text;
    }
}

TEST(ColorParserTests, RefusesEverythingElse) {
    // Between bars; a one-time code or bare hex is too easily a word or a number for a colour.
    const std::string refused =
        "|   |123456|5E5CE6|facade|#|#12|#12345|#1234567|#123456789|#ggg|# fff|color: #fff|"
        "#fff;|#fff #000|rgb(1,2)|rgb(1,2,3,4,5)|rgb(1 2 3 4)|rgb(1, 2 3)|rgb(1 2, 3)|"
        "rgb(1, 2, 3 / 0.5)|rgb(1 2 3 /)|rgb(1 2 / 3 4)|rgb(,1,2,3)|rgb(1,2,3,)|rgb(1,,2,3)|"
        "rgb()|rgb(1,2,3|rgb 1,2,3|rgb(1,2,3) extra|rgb(a,b,c)|rgb(1px, 2, 3)|rgb(1.,2,3)|"
        "rgb(1%2%3%)|rgb(nan, 0, 0)|rgb(inf 0 0)|hsl(10, 20%)|hsl(10px, 20%, 30%)|"
        "hsl(10, 20px, 30%)|oklch(50%, 0.1, 120)|oklch(50% 0.1)|oklch(50px 0.1 120)|"
        "lab(50% 40 30)|red|rgbx(1,2,3)";
    std::size_t from = 0;
    for (std::size_t bar = 0; bar != std::string::npos; from = bar + 1) {
        bar = refused.find('|', from);
        const std::string text = refused.substr(from, bar - from);
        EXPECT_FALSE(ColorParser::parse(text)) << '"' << text << '"';
    }
}

TEST(ColorParserTests, AgreesWithTheTextFormsBothWays) {
    // Whatever the hex, RGB and OKLCH forms write must read back as the same colour.
    for (int step = 0; step < 64; ++step) {
        const RGBA color{(step * 37 % 256) / 255.0, (step * 91 % 256) / 255.0,
                         (step * 53 % 256) / 255.0, step % 2 ? 1.0 : 0.5};
        for (auto format : {ClipColorFormat::hex, ClipColorFormat::rgb}) {
            const std::string text = colorText(color, format);
            const auto parsed = ColorParser::parse(text);
            ASSERT_TRUE(parsed) << text;
            EXPECT_EQ(hexOf(*parsed), hexOf(color)) << text;
        }
        const std::string oklch = colorText(color, ClipColorFormat::oklch);
        const auto parsed = ColorParser::parse(oklch);
        ASSERT_TRUE(parsed) << oklch;
        // The form keeps a tenth of a percent of L, a thousandth of chroma and a tenth of a
        // degree, so the colour read back lies within those steps (plus a sliver of clipping).
        // Compared in OKLCH: near-black channels of vivid colours are far steeper in sRGB.
        const auto written = ClipOKLCH::fromSRGB(color.r, color.g, color.b);
        const auto read = ClipOKLCH::fromSRGB(parsed->r, parsed->g, parsed->b);
        EXPECT_NEAR(read.l, written.l, 1e-3) << oklch;
        EXPECT_NEAR(read.c, written.c, 1e-3) << oklch;
        if (written.c > 0.02) {
            EXPECT_NEAR(read.h, written.h, 0.2) << oklch;
        }
        EXPECT_EQ(parsed->a, color.a) << oklch;
    }
}

}  // namespace
}  // namespace harbex
