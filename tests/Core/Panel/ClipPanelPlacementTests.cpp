#include <gtest/gtest.h>

#include <vector>

#include "HarbexClipCore/Panel/ClipPanelPlacement.hpp"
#include "HarbexClipCore/Testing/MemoryDefaults.hpp"

namespace harbex {
namespace {

using Position = ClipPanelPosition;
using Frame = ClipPanelFrame;
using Point = ClipPanelPoint;

// A laptop screen with a top bar, and a second screen to its right.
const std::vector<Frame> kScreens{{0, 32, 1440, 868}, {1440, 0, 1920, 1080}};
const ClipPanelPlacement::Size kSize{780, 500};

TEST(ClipPanelPlacementTests, PlacesThePanelByPosition) {
    struct Case {
        const char* name;
        Position position;
        Point pointer;
        std::optional<Point> last;
        Frame expected;
    };
    using P = Position;
    const Point at{100, 100};
    const Case cases[] = {
        {"centre of the pointer's screen, a third down", P::centre, at, {}, {330, 154, 780, 500}},
        {"centre of the second screen", P::centre, {2000, 500}, {}, {2010, 193, 780, 500}},
        {"near the pointer, below and right", P::nearPointer, at, {}, {112, 112, 780, 500}},
        {"near the right edge flips left", P::nearPointer, {1400, 100}, {}, {608, 112, 780, 500}},
        {"near the bottom edge flips up", P::nearPointer, {100, 880}, {}, {112, 368, 780, 500}},
        {"near the pointer, second screen",
         P::nearPointer,
         {1450, 1070},
         {},
         {1462, 558, 780, 500}},
        {"where it was", P::whereItWas, at, Point{1500, 40}, {1500, 40, 780, 500}},
        {"where it was, pulled inside", P::whereItWas, at, Point{1300, 800}, {660, 400, 780, 500}},
        {"where it was, screen unplugged",
         P::whereItWas,
         at,
         Point{4000, 40},
         {330, 154, 780, 500}},
        {"never placed yet: centre", P::whereItWas, at, {}, {330, 154, 780, 500}},
        {"pointer off every screen: the first", P::centre, {-50, -50}, {}, {330, 154, 780, 500}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(ClipPanelPlacement::place(c.position, kSize, c.pointer, kScreens, c.last),
                  c.expected);
    }
}

TEST(ClipPanelPlacementTests, AScreenSmallerThanThePanelShrinksIt) {
    const std::vector<Frame> small{{0, 0, 640, 400}};
    for (const Position position : {Position::centre, Position::nearPointer}) {
        const Frame frame = ClipPanelPlacement::place(position, kSize, {600, 350}, small, {});
        EXPECT_EQ(frame, (Frame{0, 0, 640, 400}));
    }
}

TEST(ClipPanelPlacementTests, SizesGrowAndOnlyCompactHasNoPreview) {
    const auto compact = ClipPanelPlacement::size(ClipPanelSize::compact);
    const auto regular = ClipPanelPlacement::size(ClipPanelSize::regular);
    const auto large = ClipPanelPlacement::size(ClipPanelSize::large);
    EXPECT_LT(compact.width, regular.width);
    EXPECT_LT(regular.width, large.width);
    EXPECT_LT(regular.height, large.height);
    EXPECT_FALSE(ClipPanelPlacement::hasPreview(ClipPanelSize::compact));
    EXPECT_TRUE(ClipPanelPlacement::hasPreview(ClipPanelSize::regular));
    EXPECT_TRUE(ClipPanelPlacement::hasPreview(ClipPanelSize::large));
}

TEST(ClipPanelPlacementTests, TheLastPlaceRoundTripsThroughTheDefaults) {
    MemoryDefaults defaults;
    EXPECT_EQ(ClipPanelPlacement::lastOrigin(defaults), std::nullopt);
    ClipPanelPlacement::rememberOrigin(defaults, {-1200, 45});
    EXPECT_EQ(defaults.string(ClipPanelPlacement::kLastOriginKey), "-1200,45");
    EXPECT_EQ(ClipPanelPlacement::lastOrigin(defaults), (Point{-1200, 45}));
}

TEST(ClipPanelPlacementTests, UnreadableLastPlacesAreIgnored) {
    for (const char* text : {"", "12", "12,", ",5", "a,b", "1,2,3", "1.5,2", "99999999999,1"}) {
        SCOPED_TRACE(text);
        EXPECT_EQ(ClipPanelPlacement::decodeOrigin(text), std::nullopt);
        MemoryDefaults defaults;
        defaults.setString(ClipPanelPlacement::kLastOriginKey, text);
        EXPECT_EQ(ClipPanelPlacement::lastOrigin(defaults), std::nullopt);
    }
    MemoryDefaults wrongType;
    wrongType.setBool(ClipPanelPlacement::kLastOriginKey, true);
    EXPECT_EQ(ClipPanelPlacement::lastOrigin(wrongType), std::nullopt);
}

}  // namespace
}  // namespace harbex
