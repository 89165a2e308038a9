#include "HarbexClip/Wayland/VirtualKeyboardPasteTyper.hpp"

#include <sys/mman.h>
#include <unistd.h>
#include <wayland-client.h>

#include <chrono>
#include <cstring>

#include "HarbexClip/Linux/XTestPasteTyper.hpp"
#include "virtual-keyboard-unstable-v1-client-protocol.h"

namespace harbex {

namespace {

// Evdev codes (XKB keycodes less 8) and the real-modifier bits of the keymap below.
constexpr std::uint32_t kLeftCtrl = 29;
constexpr std::uint32_t kLeftShift = 42;
constexpr std::uint32_t kV = 47;
constexpr std::uint32_t kShiftMask = 1u << 0;
constexpr std::uint32_t kControlMask = 1u << 2;

// Self-contained (no includes), so it compiles the same whatever XKB data the compositor has.
constexpr std::string_view kKeymap = R"(xkb_keymap {
xkb_keycodes "harbex" {
    minimum = 8;
    maximum = 255;
    <LCTL> = 37;
    <LFSH> = 50;
    <AB04> = 55;
};
xkb_types "harbex" {
    type "ONE_LEVEL" {
        modifiers = none;
        level_name[Level1] = "Any";
    };
    type "ALPHABETIC" {
        modifiers = Shift+Lock;
        map[Shift] = Level2;
        map[Lock] = Level2;
        level_name[Level1] = "Base";
        level_name[Level2] = "Caps";
    };
};
xkb_compatibility "harbex" {
    interpret Control_L { action = SetMods(modifiers = Control); };
    interpret Shift_L { action = SetMods(modifiers = Shift); };
};
xkb_symbols "harbex" {
    key <LCTL> { type = "ONE_LEVEL", [ Control_L ] };
    key <LFSH> { type = "ONE_LEVEL", [ Shift_L ] };
    key <AB04> { type = "ALPHABETIC", [ v, V ] };
    modifier_map Control { <LCTL> };
    modifier_map Shift { <LFSH> };
};
};
)";

std::uint32_t milliseconds() {
    using namespace std::chrono;
    return std::uint32_t(
        duration_cast<std::chrono::milliseconds>(steady_clock::now().time_since_epoch()).count());
}

}  // namespace

VirtualKeyboardPasteTyper::VirtualKeyboardPasteTyper(WaylandDesktop& desktop) : desktop_(desktop) {
    if (ready()) wl_display_flush(desktop_.display());
}

VirtualKeyboardPasteTyper::~VirtualKeyboardPasteTyper() {
    if (!keyboard_) return;
    if (desktop_.lost()) {
        // The compositor is gone: free our side only.
        wl_proxy_destroy(reinterpret_cast<wl_proxy*>(keyboard_));
        return;
    }
    zwp_virtual_keyboard_v1_destroy(keyboard_);
    wl_display_flush(desktop_.display());
}

bool VirtualKeyboardPasteTyper::isTerminal(std::string_view appID) {
    const auto dot = appID.rfind('.');
    const std::string_view last = dot == std::string_view::npos ? appID : appID.substr(dot + 1);
    return XTestPasteTyper::isTerminal(appID, last);
}

bool VirtualKeyboardPasteTyper::ready() {
    if (keyboard_) return true;
    if (desktop_.lost() || !desktop_.hasVirtualKeyboard()) return false;
    const int fd = ::memfd_create("harbex-keymap", MFD_CLOEXEC);
    if (fd < 0) return false;
    // The size sent includes the terminating NUL the format asks for.
    const std::string text(kKeymap);
    const bool written = ::write(fd, text.c_str(), text.size() + 1) == ssize_t(text.size() + 1);
    if (written) {
        keyboard_ = zwp_virtual_keyboard_manager_v1_create_virtual_keyboard(
            desktop_.virtualKeyboardManager(), desktop_.seat());
        zwp_virtual_keyboard_v1_keymap(keyboard_, WL_KEYBOARD_KEYMAP_FORMAT_XKB_V1, fd,
                                       std::uint32_t(text.size() + 1));
    }
    ::close(fd);
    return keyboard_ != nullptr;
}

void VirtualKeyboardPasteTyper::key(std::uint32_t key, bool pressed) {
    zwp_virtual_keyboard_v1_key(
        keyboard_, milliseconds(), key,
        pressed ? WL_KEYBOARD_KEY_STATE_PRESSED : WL_KEYBOARD_KEY_STATE_RELEASED);
}

void VirtualKeyboardPasteTyper::typePaste() {
    const auto active = desktop_.activeToplevel();
    if (desktop_.lost() || !ready()) return;
    const bool terminal = active && isTerminal(active->appID);
    const std::uint32_t mods = kControlMask | (terminal ? kShiftMask : 0);
    key(kLeftCtrl, true);
    if (terminal) key(kLeftShift, true);
    zwp_virtual_keyboard_v1_modifiers(keyboard_, mods, 0, 0, 0);
    key(kV, true);
    key(kV, false);
    if (terminal) key(kLeftShift, false);
    key(kLeftCtrl, false);
    zwp_virtual_keyboard_v1_modifiers(keyboard_, 0, 0, 0, 0);
    wl_display_flush(desktop_.display());
}

}  // namespace harbex
