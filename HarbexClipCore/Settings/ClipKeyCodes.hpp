#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace harbex {

// The words a platform uses for keys and modifiers when it shows a shortcut. Shortcuts are stored
// the same way everywhere (macOS virtual key codes, modifier bits), only their names differ.
enum class ClipKeyVocabulary {
    macSymbols,  // ⌃⌥⇧⌘ and key symbols: "⌃⌥⌘V"
    linuxNames,  // Ctrl, Alt, Shift, Super (for ⌘, ⌥, ⇧, ⌃) joined with "+": "Ctrl+Alt+Super+V"
};

// One key of the US layout, known by its macOS virtual key code.
struct ClipKeyCode {
    std::uint32_t keyCode;       // macOS virtual key code, the persisted form
    std::string_view macName;    // as macOS shows it in shortcuts: "V", "↩", "⌫"
    std::string_view linuxName;  // as Linux desktops show it: "V", "Return", "Backspace"
    std::uint32_t keysym;        // X11 keysym of the key at that position, unshifted
};

// Every key the product can name, in key-code order. Thread-free; the table is immutable.
std::span<const ClipKeyCode> clipKeyCodes();

// The entry for a macOS virtual key code, or nothing for a code outside the table.
std::optional<ClipKeyCode> clipKeyCode(std::uint32_t keyCode);

// The macOS key code of the key that gives `keysym`; upper-case letters and ISO_Left_Tab (what
// Shift+Tab gives) map to their unshifted key. Nothing for keysyms outside the table.
std::optional<std::uint32_t> clipKeyCodeForKeysym(std::uint32_t keysym);

// The key's name in `vocabulary`; a code outside the table shows as "Key 110".
std::string clipKeyName(std::uint32_t keyCode, ClipKeyVocabulary vocabulary);

}  // namespace harbex
