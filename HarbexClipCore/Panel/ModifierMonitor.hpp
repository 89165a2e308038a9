#pragma once

#include <functional>

#include "HarbexClipCore/Panel/ClipModifierTap.hpp"

namespace harbex {

// Watches the modifier keys system-wide, whichever application has the keyboard, for the
// double-tap trigger. Main thread; callbacks arrive on the main loop. Implementations: XInput2
// raw events in HarbexClip/Linux/, RecordingModifierMonitor in Testing/.
class ModifierMonitor {
public:
    using ModifiersChanged = std::function<void(ClipModifierTap::Held held, double timestamp)>;
    using OtherInput = std::function<void()>;

    virtual ~ModifierMonitor() = default;

    // Starts watching: `onModifiers` with the modifiers now held and the event time in seconds at
    // every modifier change (our own synthetic keystrokes excluded); `onOtherInput` at every other
    // key press or mouse click, which cancels a gesture in progress. Replaces an earlier install.
    virtual void install(ModifiersChanged onModifiers, OtherInput onOtherInput) = 0;

    // Stops watching and drops the callbacks; nothing when not installed.
    virtual void remove() = 0;
};

}  // namespace harbex
