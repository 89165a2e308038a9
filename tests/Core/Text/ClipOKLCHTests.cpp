#include "HarbexClipCore/Text/ClipOKLCH.hpp"

#include <gtest/gtest.h>

#include <array>

namespace harbex {
namespace {

struct ReferenceCase {
    const char* name;
    double r, g, b;
    ClipOKLCH::Value expected;
};

// Reference OKLCH coordinates of the sRGB primaries and white.
const ReferenceCase kReferences[] = {
    {"white", 1, 1, 1, {1.0, 0.0, 0.0}},
    {"red", 1, 0, 0, {0.6279554, 0.2576833, 29.2338851}},
    {"green", 0, 1, 0, {0.8664396, 0.2948272, 142.4953389}},
    {"blue", 0, 0, 1, {0.4520137, 0.3132144, 264.0520206}},
    {"black", 0, 0, 0, {0.0, 0.0, 0.0}},
};

TEST(ClipOKLCHTests, PrimariesMatchReferenceCoordinates) {
    for (const auto& reference : kReferences) {
        SCOPED_TRACE(reference.name);
        const auto value = ClipOKLCH::fromSRGB(reference.r, reference.g, reference.b);
        EXPECT_NEAR(value.l, reference.expected.l, 1e-6);
        EXPECT_NEAR(value.c, reference.expected.c, 1e-6);
        EXPECT_NEAR(value.h, reference.expected.h, 1e-6);
    }
}

// The table of XYZ test colours and their OKLab values from the OKLab article, given to three
// decimals; XYZ goes to linear sRGB with the IEC 61966-2-1 matrix first.
TEST(ClipOKLCHTests, XYZTestColoursMatchPublishedLab) {
    struct Case {
        double x, y, z;
        ClipOKLCH::Lab expected;
    };
    const Case cases[] = {
        {0.950, 1.000, 1.089, {1.000, 0.000, 0.000}},
        {1.000, 0.000, 0.000, {0.450, 1.236, -0.019}},
        {0.000, 1.000, 0.000, {0.922, -0.671, 0.263}},
        {0.000, 0.000, 1.000, {0.153, -1.415, -0.449}},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(testing::Message() << test.x << " " << test.y << " " << test.z);
        const ClipOKLCH::RGB linear{3.2404542 * test.x - 1.5371385 * test.y - 0.4985314 * test.z,
                                    -0.9692660 * test.x + 1.8760108 * test.y + 0.0415560 * test.z,
                                    0.0556434 * test.x - 0.2040259 * test.y + 1.0572252 * test.z};
        const auto lab = ClipOKLCH::labFromLinearSRGB(linear);
        EXPECT_NEAR(lab.l, test.expected.l, 1e-3);
        EXPECT_NEAR(lab.a, test.expected.a, 1e-3);
        EXPECT_NEAR(lab.b, test.expected.b, 1e-3);
    }
}

TEST(ClipOKLCHTests, GreysHaveHueZero) {
    for (double grey : {0.0, 0.01, 0.2, 0.5, 0.8, 1.0}) {
        SCOPED_TRACE(grey);
        const auto value = ClipOKLCH::fromSRGB(grey, grey, grey);
        EXPECT_LT(value.c, ClipOKLCH::kAchromaticChroma);
        EXPECT_EQ(value.h, 0.0);
    }
}

TEST(ClipOKLCHTests, HueStaysBelow360) {
    // Pinkish reds sit just below 360°; none may come back as 360 or negative.
    for (int blue = 0; blue <= 255; blue += 5) {
        const auto value = ClipOKLCH::fromSRGB(1, 0, blue / 255.0);
        EXPECT_GE(value.h, 0.0);
        EXPECT_LT(value.h, 360.0);
    }
}

// The published matrices carry about seven significant digits, so a round trip is exact to
// 1e-7 in linear light (1e-6 once the encoding steepens it near black): far below one step of an
// 8-bit channel (0.004).
TEST(ClipOKLCHTests, SRGBSurvivesARoundTrip) {
    for (int r = 0; r <= 255; r += 51) {
        for (int g = 0; g <= 255; g += 17) {
            for (int b = 0; b <= 255; b += 15) {
                const auto back =
                    ClipOKLCH::toSRGB(ClipOKLCH::fromSRGB(r / 255.0, g / 255.0, b / 255.0));
                ASSERT_NEAR(back.r, r / 255.0, 1e-5) << r << " " << g << " " << b;
                ASSERT_NEAR(back.g, g / 255.0, 1e-5) << r << " " << g << " " << b;
                ASSERT_NEAR(back.b, b / 255.0, 1e-5) << r << " " << g << " " << b;
            }
        }
    }
}

TEST(ClipOKLCHTests, TransferFunctionMatchesTheStandardOnBothSegments) {
    struct Case {
        double encoded, linear;
    };
    const Case cases[] = {
        {0.0, 0.0},
        {0.04045, 0.04045 / 12.92},  // last point of the linear segment
        {0.5, 0.21404114048223255},  // ((0.5 + 0.055) / 1.055) ^ 2.4
        {1.0, 1.0},
    };
    for (const auto& test : cases) {
        EXPECT_NEAR(ClipOKLCH::linearFromEncoded(test.encoded), test.linear, 1e-12);
        // The standard's two segments meet only to about 3e-8.
        EXPECT_NEAR(ClipOKLCH::encodedFromLinear(test.linear), test.encoded, 1e-7);
    }
}

TEST(ClipOKLCHTests, VividOKLCHFallsOutsideSRGB) {
    // A chroma no sRGB colour reaches: the caller must see channels outside 0…1 to clip them.
    const auto rgb = ClipOKLCH::toSRGB({0.7, 0.4, 150});
    EXPECT_TRUE(rgb.r < 0 || rgb.g > 1 || rgb.b < 0);
}

}  // namespace
}  // namespace harbex
