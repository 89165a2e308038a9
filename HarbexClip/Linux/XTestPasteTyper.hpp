#pragma once

#include <string_view>

#include "HarbexClip/Linux/X11Connection.hpp"
#include "HarbexClip/Linux/X11Keyboard.hpp"
#include "HarbexClipCore/Paste/PasteTyper.hpp"

namespace harbex {

// Types Ctrl+V through XTest (Ctrl+Shift+V into terminal emulators, where Ctrl+V is a literal
// next-character key). Modifiers held on the physical keyboard are released first and pressed
// again after, so the keystroke carries the paste modifiers alone. Main thread.
class XTestPasteTyper final : public PasteTyper {
public:
    explicit XTestPasteTyper(X11Connection& connection);
    void typePaste() override;

    // Whether a WM_CLASS (instance or class) names a terminal emulator.
    static bool isTerminal(std::string_view instance, std::string_view windowClass);

private:
    void fake(std::uint8_t type, xcb_keycode_t keycode);

    X11Connection& connection_;
    X11Keyboard keyboard_;
};

}  // namespace harbex
