#include "HarbexClip/App/ClipPlatform.hpp"

namespace harbex {

ClipPlatform ClipPlatform::choose(const ClipSessionFacts& facts) {
    ClipPlatform platform;
    const bool wayland = facts.wayland && !(facts.sessionTypeX11 && facts.x11);
    if (!wayland) {
        platform.clipboard = Clipboard::x11;
        if (!facts.x11) return platform;
        platform.front = Front::x11;
        platform.paste = facts.xtest ? Paste::xtest : Paste::none;
        platform.shortcuts = Shortcuts::x11;
        platform.doubleTap = true;
        return platform;
    }
    platform.clipboard = facts.dataControl ? Clipboard::waylandDataControl : Clipboard::x11;
    platform.front = facts.foreignToplevels ? Front::foreignToplevel : Front::none;
    platform.paste = facts.virtualKeyboard ? Paste::virtualKeyboard : Paste::none;
    platform.shortcuts = facts.shortcutsPortal ? Shortcuts::portal : Shortcuts::none;
    return platform;
}

std::string ClipPlatform::summary() const {
    std::string text = clipboard == Clipboard::waylandDataControl
                           ? "Clipboard: Wayland data-control"
                           : "Clipboard: X11";
    switch (shortcuts) {
        case Shortcuts::none: text += "; Shortcuts: desktop key bindings"; break;
        case Shortcuts::x11: text += "; Shortcuts: X11"; break;
        case Shortcuts::portal: text += "; Shortcuts: portal"; break;
    }
    switch (paste) {
        case Paste::none: text += "; Paste: none (Return copies)"; break;
        case Paste::xtest: text += "; Paste: XTest"; break;
        case Paste::virtualKeyboard: text += "; Paste: virtual keyboard"; break;
    }
    switch (front) {
        case Front::none: text += "; Front app: unknown"; break;
        case Front::x11: text += "; Front app: X11"; break;
        case Front::foreignToplevel: text += "; Front app: foreign-toplevel"; break;
    }
    return text;
}

}  // namespace harbex

#include <cctype>

#include "HarbexClipCore/Settings/ClipKeyCodes.hpp"

namespace harbex {

std::optional<std::string> swayPanelBinding(const std::optional<ClipShortcut>& shortcut) {
    if (!shortcut) return std::nullopt;
    const auto key = clipKeyCode(shortcut->keyCode);
    if (!key) return std::nullopt;
    // Sway names keys by their XKB keysym names (letters in lower case) and Super as Mod4.
    std::string name(key->linuxName);
    if (name.size() == 1) name[0] = char(std::tolower(static_cast<unsigned char>(name[0])));
    std::string combination;
    const auto& mods = shortcut->modifiers;
    if (mods.contains(ClipShortcut::Modifiers::command)) combination += "Ctrl+";
    if (mods.contains(ClipShortcut::Modifiers::option)) combination += "Mod1+";
    if (mods.contains(ClipShortcut::Modifiers::shift)) combination += "Shift+";
    if (mods.contains(ClipShortcut::Modifiers::control)) combination += "Mod4+";
    return "bindsym " + combination + name + " exec harbex-clipboard --panel";
}

}  // namespace harbex
