#pragma once

#include <cstdint>
#include <string_view>

#include "HarbexClip/Wayland/WaylandDesktop.hpp"
#include "HarbexClipCore/Paste/PasteTyper.hpp"

struct zwp_virtual_keyboard_v1;

namespace harbex {

// Types Ctrl+V (Ctrl+Shift+V into terminal emulators) through a virtual keyboard of our own.
// The compositor keeps a keyboard's modifiers per device, so keys the person holds on the real
// keyboard do not join ours. The keyboard and its keymap (Ctrl, Shift and V only) are made at
// once: on a seat without a keyboard, windows only take one up when it appears, too late for a
// keystroke sent the same moment. Requires `desktop.hasVirtualKeyboard()`. Main thread.
class VirtualKeyboardPasteTyper final : public PasteTyper {
public:
    explicit VirtualKeyboardPasteTyper(WaylandDesktop& desktop);
    ~VirtualKeyboardPasteTyper() override;
    void typePaste() override;

    // Whether an app_id names a terminal emulator ("foot", "org.kde.konsole").
    static bool isTerminal(std::string_view appID);

private:
    bool ready();
    void key(std::uint32_t key, bool pressed);

    WaylandDesktop& desktop_;
    zwp_virtual_keyboard_v1* keyboard_ = nullptr;
};

}  // namespace harbex
