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
    const Case cases[] = {
        {"centre of the pointer's screen, a third down",
         Position::centre,
         {100, 100},
         {},
         {330, 32 + 122, 780, 500}},
        {"centre of the second screen",
         Position::centre,
         {2000, 500},
         {},
         {1440 + 570, 193, 780, 500}},
        {"near the pointer, below and right",
         Position::nearPointer,
         {100, 100},
         {},
         {112, 112, 780, 500}},
        {"near the right edge flips left",
         Position::nearPointer,
         {1400, 100},
         {},
         {1400 - 12 - 780, 112, 780, 500}},
        {"near the bottom edge flips up",
         Position::nearPointer,
         {100, 880},
         {},
         {112, 880 - 12 - 500, 780, 500}},
        {"near the pointer on the second screen stays there",
         Position::nearPointer,
         {1450, 1070},
         {},
         {1462, 1070 - 12 - 500, 780, 500}},
        {"where it was", Position::whereItWas, {100, 100}, Point{1500, 40}, {1500, 40, 780, 500}},
        {"where it was, pulled inside its screen",
         Position::whereItWas,
         {100, 100},
         Point{1300, 800},
         {1440 - 780, 900 - 500, 780, 500}},
        {"where it was on an unplugged screen: centre",
         Position::whereItWas,
         {100, 100},
         Point{4000, 40},
         {330, 154, 780, 500}},
        {"never placed yet: centre", Position::whereItWas, {100, 100}, {}, {330, 154, 780, 500}},
        {"pointer off every screen: the first",
         Position::centre,
         {-50, -50},
         {},
         {330, 154, 780, 500}},
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
