#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <vector>

#include "HarbexClip/Linux/X11Connection.hpp"
#include "HarbexClip/Linux/X11Keyboard.hpp"
#include "HarbexClipCore/Panel/ModifierMonitor.hpp"

namespace harbex {

// Whether keystrokes from XTest devices count. They are ignored in the application, where the
// only XTest typist is our own paste keystroke; tests that type with xdotool accept them.
enum class XTestInput { ignored, accepted };

// Modifier changes from XInput 2 raw key events on the root window, which arrive whatever
// client has the keyboard (grabs included). Main thread; callbacks run from `dispatch()`.
class X11ModifierMonitor final : public ModifierMonitor {
public:
    X11ModifierMonitor(X11Connection& connection, XTestInput xtest = XTestInput::ignored);
    ~X11ModifierMonitor() override;

    void install(ModifiersChanged onModifiers, OtherInput onOtherInput) override;
    void remove() override;

    // False when the server lacks XInput 2.2: install then does nothing.
    bool isAvailable() const;

private:
    bool handleEvent(const xcb_generic_event_t& event);
    void select(bool on);
    void readDevices();
    void readModifierKeys();
    ClipModifierTap::Held held() const;

    X11Connection& connection_;
    XTestInput xtest_;
    X11Keyboard keyboard_;
    int handlerID_ = 0;
    ModifiersChanged onModifiers_;
    OtherInput onOtherInput_;
    std::vector<std::uint16_t> xtestDevices_;
    // Keycodes of each modifier, by the Held bit they stand for.
    std::vector<std::pair<xcb_keycode_t, int>> modifierKeys_;
    std::vector<xcb_keycode_t> down_;
};

}  // namespace harbex
