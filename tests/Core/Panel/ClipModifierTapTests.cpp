#include "HarbexClipCore/Panel/ClipModifierTap.hpp"

#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <vector>

namespace harbex {
namespace {

using Held = ClipModifierTap::Held;
using State = ClipModifierTap::State;

// Event timestamps count from boot, so they are large; differences then carry rounding error,
// which the limits must tolerate.
constexpr double kBase = 86'400.5;

constexpr int kReset = -1;  // a key or a click between the taps

struct Event {
    int held;   // raw Held bits, or kReset
    double at;  // seconds after kBase
};

struct TapCase {
    std::string name;
    Held modifier;
    std::vector<Event> events;
    std::vector<int> fires;  // indices of the events that complete a double tap
    State finalState;
};

void PrintTo(const TapCase& c, std::ostream* out) { *out << c.name; }

class ClipModifierTapSequenceTests : public testing::TestWithParam<TapCase> {};

TEST_P(ClipModifierTapSequenceTests, FiresExactlyWhereExpected) {
    const TapCase& c = GetParam();
    ClipModifierTap tap(c.modifier);
    std::vector<int> fired;
    for (int i = 0; i < static_cast<int>(c.events.size()); ++i) {
        const Event& event = c.events[i];
        if (event.held == kReset) {
            tap.reset();
            continue;
        }
        if (tap.handle(Held(event.held), kBase + event.at)) fired.push_back(i);
    }
    EXPECT_EQ(fired, c.fires);
    State expected = c.finalState;
    if (expected.phase != State::Phase::idle) expected.at += kBase;
    EXPECT_EQ(tap.state.phase, expected.phase);
    EXPECT_NEAR(tap.state.at, expected.at, 1e-9);
}

constexpr int C = Held::kCommand;
constexpr int S = Held::kShift;
constexpr int O = Held::kOption;

INSTANTIATE_TEST_SUITE_P(
    Cases, ClipModifierTapSequenceTests,
    testing::Values(
        TapCase{"pressAndGapExactlyAtTheLimits",
                Held::command(),
                {{C, 0}, {0, 0.25}, {C, 0.55}, {0, 0.80}},
                {3},
                State::idle()},
        TapCase{"quickDoubleTap",
                Held::command(),
                {{C, 0}, {0, 0.08}, {C, 0.2}, {0, 0.27}},
                {3},
                State::idle()},
        TapCase{"firstPressHeldTooLong", Held::command(), {{C, 0}, {0, 0.26}}, {}, State::idle()},
        TapCase{"firstPressTooLongThenOneTapIsOnlyAFirstTap",
                Held::command(),
                {{C, 0}, {0, 0.26}, {C, 0.4}, {0, 0.5}},
                {},
                State::firstUp(0.5)},
        TapCase{"secondPressHeldTooLong",
                Held::command(),
                {{C, 0}, {0, 0.1}, {C, 0.2}, {0, 0.46}},
                {},
                State::idle()},
        TapCase{"gapJustOverStartsAnewAndAThirdPairFires",
                Held::command(),
                {{C, 0}, {0, 0.1}, {C, 0.41}, {0, 0.5}, {C, 0.6}, {0, 0.7}},
                {5},
                State::idle()},
        TapCase{"gapJustOverLeavesANewFirstDown",
                Held::command(),
                {{C, 0}, {0, 0.1}, {C, 0.41}},
                {},
                State::firstDown(0.41)},
        TapCase{"commandThenShiftTogetherResets",
                Held::command(),
                {{C, 0}, {C | S, 0.05}, {0, 0.1}, {C, 0.2}, {0, 0.25}},
                {},
                State::firstUp(0.25)},
        TapCase{"shiftJoiningTheSecondPressSpoilsIt",
                Held::command(),
                {{C, 0}, {0, 0.1}, {C, 0.2}, {C | S, 0.22}, {C, 0.24}, {0, 0.3}},
                {},
                State::firstUp(0.3)},
        TapCase{"anotherModifierBetweenTheTapsResets",
                Held::command(),
                {{C, 0}, {0, 0.1}, {S, 0.15}, {0, 0.2}, {C, 0.25}, {0, 0.3}},
                {},
                State::firstUp(0.3)},
        TapCase{"aKeyBetweenTheTapsResets",
                Held::command(),
                {{C, 0}, {0, 0.1}, {kReset, 0.15}, {C, 0.2}, {0, 0.3}},
                {},
                State::firstUp(0.3)},
        TapCase{"aKeyDuringTheSecondPressResets",
                Held::command(),
                {{C, 0}, {0, 0.1}, {C, 0.2}, {kReset, 0.22}, {0, 0.3}},
                {},
                State::idle()},
        TapCase{"tripleTapFiresOnceThenStartsOver",
                Held::command(),
                {{C, 0}, {0, 0.1}, {C, 0.2}, {0, 0.3}, {C, 0.4}, {0, 0.5}},
                {3},
                State::firstUp(0.5)},
        TapCase{"fourQuickTapsFireTwice",
                Held::command(),
                {{C, 0}, {0, 0.1}, {C, 0.2}, {0, 0.3}, {C, 0.4}, {0, 0.5}, {C, 0.6}, {0, 0.7}},
                {3, 7},
                State::idle()},
        TapCase{"otherTriggerIgnoresCommand",
                Held::option(),
                {{C, 0}, {0, 0.1}, {C, 0.2}, {0, 0.3}},
                {},
                State::idle()},
        TapCase{"optionTrigger",
                Held::option(),
                {{O, 0}, {0, 0.1}, {O, 0.2}, {0, 0.3}},
                {3},
                State::idle()},
        TapCase{"lockBitsFromThePlatformAreIgnored",
                Held::command(),
                {{C | 256, 0}, {1024, 0.1}, {C | 4096, 0.2}, {0, 0.3}},
                {3},
                State::idle()}),
    [](const auto& info) { return info.param.name; });

TEST(ClipModifierTapTests, HeldKeepsOnlyTheFiveModifierBits) {
    EXPECT_EQ(Held(0x7fffffff).rawValue, 31);
    EXPECT_EQ(Held(256 | 2).rawValue, 2);
    EXPECT_EQ(Held::command() | Held::control(), Held(9));
    EXPECT_TRUE(Held(-1).contains(Held::function()));
    EXPECT_TRUE(Held(32).isEmpty());
}

}  // namespace
}  // namespace harbex
