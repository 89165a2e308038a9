#include "HarbexClipCore/Panel/ClipModifierTap.hpp"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

namespace harbex {
namespace {

using Held = ClipModifierTap::Held;
using State = ClipModifierTap::State;

// Event timestamps count from boot, so they are large; differences then carry rounding error,
// which the limits must tolerate.
constexpr double kBase = 86'400.5;

// Feeds "C0 _.25 CS.3 R.4" (command held at 0 s, nothing at 0.25 s, command and shift at 0.3 s,
// a key or a click at 0.4 s; O is option, x lock bits from the platform) and returns the indices
// of the events that completed a double tap.
std::vector<int> feed(ClipModifierTap& tap, const std::string& events) {
    std::istringstream in(events);
    std::vector<int> fired;
    std::string token;
    for (int i = 0; in >> token; ++i) {
        const std::size_t split = token.find_first_of("0123456789.");
        int held = 0;
        for (const char c : token.substr(0, split)) {
            held |= c == 'C'   ? Held::kCommand
                    : c == 'S' ? Held::kShift
                    : c == 'O' ? Held::kOption
                    : c == 'x' ? 256 | 1024 | 4096
                               : 0;
        }
        if (token[0] == 'R') {
            tap.reset();
        } else if (tap.handle(Held(held), kBase + std::stod(token.substr(split)))) {
            fired.push_back(i);
        }
    }
    return fired;
}

TEST(ClipModifierTapTests, FiresExactlyWhereExpected) {
    struct Case {
        const char* name;
        Held modifier;
        std::string events;
        std::vector<int> fires;
        State finalState;  // its time counted from the first event
    };
    const Held cmd = Held::command();
    const Case cases[] = {
        {"press and gap exactly at the limits", cmd, "C0 _.25 C.55 _.80", {3}, State::idle()},
        {"quick double tap", cmd, "C0 _.08 C.2 _.27", {3}, State::idle()},
        {"first press held too long", cmd, "C0 _.26", {}, State::idle()},
        {"then one tap is only a first tap", cmd, "C0 _.26 C.4 _.5", {}, State::firstUp(0.5)},
        {"second press held too long", cmd, "C0 _.1 C.2 _.46", {}, State::idle()},
        {"gap just over starts anew", cmd, "C0 _.1 C.41 _.5 C.6 _.7", {5}, State::idle()},
        {"gap just over leaves a first down", cmd, "C0 _.1 C.41", {}, State::firstDown(0.41)},
        {"command then shift together", cmd, "C0 CS.05 _.1 C.2 _.25", {}, State::firstUp(0.25)},
        {"shift joining the second press",
         cmd,
         "C0 _.1 C.2 CS.22 C.24 _.3",
         {},
         State::firstUp(0.3)},
        {"another modifier between the taps",
         cmd,
         "C0 _.1 S.15 _.2 C.25 _.3",
         {},
         State::firstUp(0.3)},
        {"a key between the taps", cmd, "C0 _.1 R.15 C.2 _.3", {}, State::firstUp(0.3)},
        {"a key during the second press", cmd, "C0 _.1 C.2 R.22 _.3", {}, State::idle()},
        {"triple tap fires once", cmd, "C0 _.1 C.2 _.3 C.4 _.5", {3}, State::firstUp(0.5)},
        {"four quick taps fire twice",
         cmd,
         "C0 _.1 C.2 _.3 C.4 _.5 C.6 _.7",
         {3, 7},
         State::idle()},
        {"option trigger ignores command", Held::option(), "C0 _.1 C.2 _.3", {}, State::idle()},
        {"option trigger", Held::option(), "O0 _.1 O.2 _.3", {3}, State::idle()},
        {"lock bits are ignored", cmd, "Cx0 x.1 Cx.2 _.3", {3}, State::idle()},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        ClipModifierTap tap(c.modifier);
        EXPECT_EQ(feed(tap, c.events), c.fires);
        EXPECT_EQ(tap.state.phase, c.finalState.phase);
        const double at = c.finalState.phase == State::Phase::idle ? 0 : kBase + c.finalState.at;
        EXPECT_NEAR(tap.state.at, at, 1e-9);
    }
}

}  // namespace
}  // namespace harbex
