#pragma once

namespace harbex {

// The longest a single press of the trigger modifier may be held, and the longest pause between
// the first release and the second press, in seconds.
inline constexpr double kDoubleTapMaxPress = 0.25;
inline constexpr double kDoubleTapMaxGap = 0.3;

// Recognises a double tap of one modifier key from the stream of modifier-state changes, each
// with its timestamp in seconds. A value; fed on the main thread by the modifier monitor.
struct ClipModifierTap {
    // The modifiers held down, one bit each. Building from a raw value keeps only these bits, so
    // lock and device bits from the platform never spoil an exact comparison.
    struct Held {
        static constexpr int kCommand = 1;
        static constexpr int kShift = 2;
        static constexpr int kOption = 4;
        static constexpr int kControl = 8;
        static constexpr int kFunction = 16;
        static constexpr int kAll = kCommand | kShift | kOption | kControl | kFunction;

        int rawValue = 0;

        constexpr Held() = default;
        explicit constexpr Held(int raw) : rawValue(raw & kAll) {}

        static constexpr Held command() { return Held(kCommand); }
        static constexpr Held shift() { return Held(kShift); }
        static constexpr Held option() { return Held(kOption); }
        static constexpr Held control() { return Held(kControl); }
        static constexpr Held function() { return Held(kFunction); }

        constexpr bool isEmpty() const { return rawValue == 0; }
        constexpr bool contains(Held other) const {
            return (rawValue & other.rawValue) == other.rawValue;
        }
        friend constexpr Held operator|(Held a, Held b) { return Held(a.rawValue | b.rawValue); }
        friend constexpr bool operator==(Held, Held) = default;
    };

    // Where the gesture stands; the timed phases carry the moment they began.
    struct State {
        enum class Phase { firstDown, firstUp, secondDown, idle };
        Phase phase = Phase::idle;
        double at = 0;

        static constexpr State firstDown(double at) { return {Phase::firstDown, at}; }
        static constexpr State firstUp(double at) { return {Phase::firstUp, at}; }
        static constexpr State secondDown(double at) { return {Phase::secondDown, at}; }
        static constexpr State idle() { return {}; }

        friend constexpr bool operator==(const State&, const State&) = default;
    };

    Held modifier;
    double maxPress = kDoubleTapMaxPress;
    double maxGap = kDoubleTapMaxGap;
    State state;

    ClipModifierTap(Held modifier, double maxPress = kDoubleTapMaxPress,
                    double maxGap = kDoubleTapMaxGap)
        : modifier(modifier), maxPress(maxPress), maxGap(maxGap) {}

    // Takes the modifiers now held at time `at`; true exactly when this change completes a double
    // tap (the second release). Limits are inclusive.
    bool handle(Held held, double at);
    // Forgets any gesture in progress: a key or a click came between the taps.
    void reset() { state = State::idle(); }
};

}  // namespace harbex
