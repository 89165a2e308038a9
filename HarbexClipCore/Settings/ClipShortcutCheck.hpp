#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "HarbexClipCore/Settings/ClipKeyCodes.hpp"
#include "HarbexClipCore/Settings/ClipSettings.hpp"
#include "HarbexClipCore/Settings/ClipShortcut.hpp"

namespace harbex {

// Decides whether a shortcut the user is recording may be used, in the words of one platform.
// Pure; any thread.
class ClipShortcutCheck {
public:
    explicit ClipShortcutCheck(ClipKeyVocabulary vocabulary) : vocabulary_(vocabulary) {}

    // Why the shortcut cannot be used for `slot`, or nothing when it can: it needs ⌘, ⌃ or ⌥; it
    // must not repeat another slot's shortcut (the slot being edited is not compared with itself);
    // ⌘ alone must not take a key that every application uses (A, Z, X, C, V, Q, W, H, M, Tab).
    std::optional<std::string> problem(std::uint32_t keyCode, ClipShortcut::Modifiers modifiers,
                                       ClipShortcutSlot slot, const ClipSettings& settings) const;

    // A soft warning for an acceptable shortcut: ⇧⌘V and ⌥⇧⌘V clash with Paste and Match Style.
    std::optional<std::string> warning(std::uint32_t keyCode,
                                       ClipShortcut::Modifiers modifiers) const;

private:
    ClipKeyVocabulary vocabulary_;
};

}  // namespace harbex
