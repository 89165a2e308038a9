#pragma once

#include <xcb/xcb.h>
#include <xcb/xcb_keysyms.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "HarbexClip/Linux/X11Connection.hpp"

namespace harbex {

// The keyboard mapping as the shortcut, typing and modifier code needs it: keysym ↔ keycode
// and which modifier bits the lock keys use. Refresh after a MappingNotify.
class X11Keyboard {
public:
    explicit X11Keyboard(X11Connection& connection);
    ~X11Keyboard();
    X11Keyboard(const X11Keyboard&) = delete;
    X11Keyboard& operator=(const X11Keyboard&) = delete;

    // Re-reads the keyboard and modifier mappings.
    void refresh();

    // The first keycode that produces `keysym`; nothing when the layout lacks it.
    std::optional<xcb_keycode_t> keycode(xcb_keysym_t keysym) const;
    // Every keycode that produces `keysym`.
    std::vector<xcb_keycode_t> keycodes(xcb_keysym_t keysym) const;

    // Modifier masks of NumLock and ScrollLock (0 when unmapped); CapsLock is always LockMask.
    std::uint16_t numLockMask() const { return numLockMask_; }
    std::uint16_t scrollLockMask() const { return scrollLockMask_; }
    std::uint16_t lockMasks() const {
        return std::uint16_t(XCB_MOD_MASK_LOCK | numLockMask_ | scrollLockMask_);
    }
    // Every keycode bound to a modifier (Shift, Control, Mod1..Mod5; not Lock).
    const std::vector<xcb_keycode_t>& modifierKeycodes() const { return modifierKeycodes_; }

private:
    X11Connection& connection_;
    xcb_key_symbols_t* symbols_ = nullptr;
    std::uint16_t numLockMask_ = 0;
    std::uint16_t scrollLockMask_ = 0;
    std::vector<xcb_keycode_t> modifierKeycodes_;
};

}  // namespace harbex
