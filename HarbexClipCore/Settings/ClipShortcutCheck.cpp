#include "HarbexClipCore/Settings/ClipShortcutCheck.hpp"

#include <algorithm>
#include <array>
#include <utility>

namespace harbex {

namespace {

using Modifiers = ClipShortcut::Modifiers;

constexpr std::uint32_t kKeyV = 9;

// A, Z, X, C, V, Q, W, H, M and Tab: with ⌘ alone these are every application's own commands.
constexpr std::array<std::uint32_t, 10> kStandardCommandKeys{0, 6, 7, 8, 9, 12, 13, 4, 46, 48};

std::optional<ClipShortcut> shortcutIn(ClipShortcutSlot slot, const ClipSettings& settings) {
    switch (slot) {
        case ClipShortcutSlot::panel: return settings.panel.fallback;
        case ClipShortcutSlot::mainWindow: return settings.libraryShortcut;
        case ClipShortcutSlot::pause: return settings.window.pauseShortcut;
    }
    return std::nullopt;
}

}  // namespace

std::optional<std::string> ClipShortcutCheck::problem(std::uint32_t keyCode, Modifiers modifiers,
                                                      ClipShortcutSlot slot,
                                                      const ClipSettings& settings) const {
    const bool hasCommandKey = modifiers.contains(Modifiers::command) ||
                               modifiers.contains(Modifiers::control) ||
                               modifiers.contains(Modifiers::option);
    if (!hasCommandKey) {
        return "A shortcut needs " + modifierName(Modifiers::command, vocabulary_) + ", " +
               modifierName(Modifiers::control, vocabulary_) + " or " +
               modifierName(Modifiers::option, vocabulary_) + ".";
    }

    const ClipShortcut candidate{keyCode, modifiers};
    for (const auto other : allCases<ClipShortcutSlot>()) {
        if (other == slot) continue;
        if (shortcutIn(other, settings) == candidate) {
            return displayForm(candidate, vocabulary_) + " already " + std::string(purpose(other)) +
                   ".";
        }
    }

    if (modifiers == Modifiers::command &&
        std::ranges::find(kStandardCommandKeys, keyCode) != kStandardCommandKeys.end()) {
        return displayForm(candidate, vocabulary_) + " is every app’s own.";
    }
    return std::nullopt;
}

std::optional<std::string> ClipShortcutCheck::warning(std::uint32_t keyCode,
                                                      Modifiers modifiers) const {
    const Modifiers commandShift = Modifiers::command | Modifiers::shift;
    if (keyCode == kKeyV &&
        (modifiers == commandShift || modifiers == (commandShift | Modifiers::option))) {
        return "Many apps use " + displayForm(keyCode, modifiers, vocabulary_) +
               " for Paste and Match Style.";
    }
    return std::nullopt;
}

}  // namespace harbex
