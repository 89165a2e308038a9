#include "HarbexClipCore/Panel/ClipModifierTap.hpp"

namespace harbex {

namespace {

// Timestamps are large doubles (seconds since boot or since the epoch); their difference carries
// rounding error, so a gap of exactly the limit may come out a hair above it. A nanosecond of
// slack keeps the limit inclusive as intended.
constexpr double kSlack = 1e-9;

bool within(double elapsed, double limit) { return elapsed <= limit + kSlack; }

}  // namespace

bool ClipModifierTap::handle(Held held, double at) {
    using Phase = State::Phase;
    if (held == modifier) {
        if (state.phase == Phase::firstUp && within(at - state.at, maxGap)) {
            state = State::secondDown(at);
        } else {
            state = State::firstDown(at);
        }
        return false;
    }
    if (held.isEmpty()) {
        const State was = state;
        state = State::idle();
        switch (was.phase) {
            case Phase::secondDown: return within(at - was.at, maxPress);
            case Phase::firstDown:
                if (within(at - was.at, maxPress)) state = State::firstUp(at);
                return false;
            case Phase::firstUp:
            case Phase::idle: return false;
        }
        return false;
    }
    state = State::idle();
    return false;
}

}  // namespace harbex
