#pragma once

#include <xcb/xcb.h>

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "HarbexClip/Linux/X11Connection.hpp"
#include "HarbexClip/Linux/X11Keyboard.hpp"
#include "HarbexClipCore/Panel/HotKeyRegistrar.hpp"

namespace harbex {

// Global shortcuts as passive key grabs on the root window, one per combination of the lock
// modifiers (CapsLock, NumLock, ScrollLock) so a lit lock key does not disable them. Presses are
// delivered from `X11Connection::dispatch()`. Main thread.
class X11HotKeyRegistrar final : public HotKeyRegistrar {
public:
    // Another client already grabs the key with these modifiers (X's BadAccess); the value is
    // Carbon's "hot key exists" so the settings page treats it the same everywhere.
    static constexpr int kStatusKeyTaken = -9878;
    // The key code is not in the table, or the keyboard layout has no key for it.
    static constexpr int kStatusNoSuchKey = -9870;
    // The server refused the grab for another reason.
    static constexpr int kStatusGrabFailed = -9871;

    explicit X11HotKeyRegistrar(X11Connection& connection);
    ~X11HotKeyRegistrar() override;

    std::span<const HotKeyModifierBit> modifierTable() const override;
    void install(std::function<void(HotKeyWhich)> onPressed) override;
    int registerHotKey(HotKeyWhich which, std::uint32_t keyCode,
                       std::uint32_t platformModifiers) override;
    void unregisterHotKey(HotKeyWhich which) override;

private:
    struct Grab {
        xcb_keycode_t keycode = 0;
        std::uint16_t modifiers = 0;
        std::vector<std::uint16_t> variants;  // the modifier sets actually grabbed
    };
    bool handleEvent(const xcb_generic_event_t& event);
    void ungrab(const Grab& grab);

    X11Connection& connection_;
    X11Keyboard keyboard_;
    int handlerID_ = 0;
    std::function<void(HotKeyWhich)> onPressed_;
    std::array<std::optional<Grab>, 3> grabs_;
};

}  // namespace harbex
