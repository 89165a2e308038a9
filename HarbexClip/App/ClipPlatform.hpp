#pragma once

#include <string>

namespace harbex {

// What the session offers, gathered once at start.
struct ClipSessionFacts {
    bool wayland = false;           // a compositor answered at $WAYLAND_DISPLAY
    bool sessionTypeX11 = false;    // $XDG_SESSION_TYPE says x11 (a compositor nested in X)
    bool dataControl = false;       // ext_ or zwlr_data_control_manager_v1 (version 2 or later)
    bool foreignToplevels = false;  // zwlr_foreign_toplevel_manager_v1
    bool virtualKeyboard = false;   // zwp_virtual_keyboard_manager_v1 and a seat
    bool x11 = false;               // an X display opened (an X11 session, or XWayland)
    bool xtest = false;             // that display has XTEST
    bool shortcutsPortal = false;   // the desktop portal offers GlobalShortcuts
};

// Which implementation does each platform job. One decision for the whole process, made in
// `choose` and nowhere else, so the About page can say exactly what runs.
struct ClipPlatform {
    enum class Clipboard { x11, waylandDataControl };
    enum class Front { none, x11, foreignToplevel };
    enum class Paste { none, xtest, virtualKeyboard };
    enum class Shortcuts { none, x11, portal };

    Clipboard clipboard = Clipboard::x11;
    Front front = Front::none;
    Paste paste = Paste::none;
    Shortcuts shortcuts = Shortcuts::none;
    bool doubleTap = false;  // the modifier watch exists only on X11

    // A Wayland session uses the compositor's own protocols for each job it offers and leaves
    // the others absent rather than aiming X11 requests at XWayland, which only reaches X11
    // windows: without foreign-toplevel there is no target (Return copies), without a virtual
    // keyboard no keystroke (`copied`), without the portal the compositor's own key bindings
    // call `--panel`. The clipboard is the one exception: without data-control it goes through
    // XWayland, the only way left to see copies at all. An X11 session uses X11 throughout.
    static ClipPlatform choose(const ClipSessionFacts& facts);

    bool operator==(const ClipPlatform&) const = default;

    // "Clipboard: Wayland data-control; Shortcuts: portal; Paste: virtual keyboard; Front app:
    // foreign-toplevel", for the About page and the log.
    std::string summary() const;
};

}  // namespace harbex

#include <optional>

#include "HarbexClipCore/Settings/ClipShortcut.hpp"

namespace harbex {

// The line that makes sway (and i3-style compositors) open the panel on `shortcut`:
// "bindsym Ctrl+Mod4+v exec harbex-clipboard --panel". Nothing without a shortcut or for a key
// outside the key table.
std::optional<std::string> swayPanelBinding(const std::optional<ClipShortcut>& shortcut);

}  // namespace harbex
