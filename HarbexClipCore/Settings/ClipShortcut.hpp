#pragma once

#include <cstdint>
#include <string>

#include "HarbexClipCore/Settings/ClipKeyCodes.hpp"
#include "HarbexClipCore/Support/Json.hpp"

namespace harbex {

// A key and its modifiers, as the user chose them for a global shortcut. The key code is the
// macOS virtual key code on every platform (9 is V), so a settings record means the same
// everywhere; ClipKeyCodes maps it to the local key.
struct ClipShortcut {
    // An option set over a signed raw value, persisted as that integer. Unknown bits are kept.
    struct Modifiers {
        int rawValue = 0;

        static const Modifiers command;
        static const Modifiers shift;
        static const Modifiers option;
        static const Modifiers control;

        constexpr bool contains(Modifiers other) const {
            return (rawValue & other.rawValue) == other.rawValue;
        }
        constexpr bool isEmpty() const { return rawValue == 0; }
        friend constexpr Modifiers operator|(Modifiers a, Modifiers b) {
            return Modifiers{a.rawValue | b.rawValue};
        }
        friend constexpr bool operator==(Modifiers, Modifiers) = default;
    };

    std::uint32_t keyCode = 0;
    Modifiers modifiers;

    friend bool operator==(const ClipShortcut&, const ClipShortcut&) = default;
};

inline constexpr ClipShortcut::Modifiers ClipShortcut::Modifiers::command{1};
inline constexpr ClipShortcut::Modifiers ClipShortcut::Modifiers::shift{2};
inline constexpr ClipShortcut::Modifiers ClipShortcut::Modifiers::option{4};
inline constexpr ClipShortcut::Modifiers ClipShortcut::Modifiers::control{8};

// The name of one modifier: "⌘" or "Ctrl" for command, and so on. `modifier` is a single bit.
std::string modifierName(ClipShortcut::Modifiers modifier, ClipKeyVocabulary vocabulary);

// How a shortcut is shown: "⌃⌥⌘V" (modifiers in the order ⌃ ⌥ ⇧ ⌘, then the key) or, with Linux
// names, "Ctrl+Alt+Super+V" (Ctrl, Alt, Shift, Super, then the key, joined with "+").
std::string displayForm(std::uint32_t keyCode, ClipShortcut::Modifiers modifiers,
                        ClipKeyVocabulary vocabulary);
inline std::string displayForm(const ClipShortcut& shortcut, ClipKeyVocabulary vocabulary) {
    return displayForm(shortcut.keyCode, shortcut.modifiers, vocabulary);
}

// {"keyCode": 9, "modifiers": 9}; both keys are required when decoding.
JsonValue encodeJson(const ClipShortcut& shortcut);
JsonStatus decodeJson(const JsonValue& json, ClipShortcut& out);

}  // namespace harbex
