#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <span>
#include <string_view>
#include <utility>

#include "HarbexClipCore/Settings/ClipShortcut.hpp"
#include "HarbexClipCore/Support/EnumNames.hpp"

namespace harbex {

// The three global shortcut slots. The raw value is also the hot-key identifier given to the
// platform.
enum class HotKeyWhich { panel = 0, library = 1, pause = 2 };

template <>
struct EnumNames<HotKeyWhich> {
    static constexpr std::array values{
        std::pair{HotKeyWhich::panel, std::string_view("panel")},
        std::pair{HotKeyWhich::library, std::string_view("library")},
        std::pair{HotKeyWhich::pause, std::string_view("pause")},
    };
};

// One row of a modifier translation: a shortcut modifier bit and the platform mask it becomes.
struct HotKeyModifierBit {
    ClipShortcut::Modifiers modifier;
    std::uint32_t platformMask = 0;
};

// Registers global hot keys with the window system. Main thread; hot-key presses are delivered
// on the main loop. Implementations: XGrabKey in HarbexClip/Linux/, RecordingHotKeyRegistrar in
// Testing/.
class HotKeyRegistrar {
public:
    virtual ~HotKeyRegistrar() = default;

    // How shortcut modifiers become this platform's modifier masks, one row per bit.
    virtual std::span<const HotKeyModifierBit> modifierTable() const = 0;

    // Installs the one application-wide handler, called with the slot of each hot key pressed.
    // Called once, before any registration.
    virtual void install(std::function<void(HotKeyWhich)> onPressed) = 0;

    // Registers `keyCode` (a macOS virtual key code, the persisted form) with `platformModifiers`
    // (already translated through `modifierTable`) for `which`. The slot must be empty. Returns 0
    // on success, otherwise the platform's status (for instance: the key is taken); a failure
    // leaves the slot empty.
    virtual int registerHotKey(HotKeyWhich which, std::uint32_t keyCode,
                               std::uint32_t platformModifiers) = 0;

    // Releases what `which` holds; nothing when it holds nothing.
    virtual void unregisterHotKey(HotKeyWhich which) = 0;
};

}  // namespace harbex
