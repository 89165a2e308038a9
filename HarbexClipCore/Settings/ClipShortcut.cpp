#include "HarbexClipCore/Settings/ClipShortcut.hpp"

#include <array>
#include <limits>

namespace harbex {

namespace {

using Modifiers = ClipShortcut::Modifiers;

// macOS shows modifiers as ⌃⌥⇧⌘; Linux desktops write Ctrl first. Since ⌘ maps to Ctrl and ⌃ to
// Super, the two orders differ.
constexpr std::array kMacOrder{Modifiers::control, Modifiers::option, Modifiers::shift,
                               Modifiers::command};
constexpr std::array kLinuxOrder{Modifiers::command, Modifiers::option, Modifiers::shift,
                                 Modifiers::control};

}  // namespace

std::string modifierName(Modifiers modifier, ClipKeyVocabulary vocabulary) {
    const bool mac = vocabulary == ClipKeyVocabulary::macSymbols;
    if (modifier == Modifiers::command) return mac ? "⌘" : "Ctrl";
    if (modifier == Modifiers::shift) return mac ? "⇧" : "Shift";
    if (modifier == Modifiers::option) return mac ? "⌥" : "Alt";
    if (modifier == Modifiers::control) return mac ? "⌃" : "Super";
    return {};
}

std::string displayForm(std::uint32_t keyCode, Modifiers modifiers, ClipKeyVocabulary vocabulary) {
    std::string text;
    if (vocabulary == ClipKeyVocabulary::macSymbols) {
        for (const auto modifier : kMacOrder) {
            if (modifiers.contains(modifier)) text += modifierName(modifier, vocabulary);
        }
    } else {
        for (const auto modifier : kLinuxOrder) {
            if (modifiers.contains(modifier)) text += modifierName(modifier, vocabulary) + "+";
        }
    }
    return text + clipKeyName(keyCode, vocabulary);
}

JsonValue encodeJson(const ClipShortcut& shortcut) {
    return JsonObjectWriter()
        .field("keyCode", shortcut.keyCode)
        .field("modifiers", static_cast<std::int64_t>(shortcut.modifiers.rawValue))
        .take();
}

JsonStatus decodeJson(const JsonValue& json, ClipShortcut& out) {
    ClipShortcut value;
    std::int64_t modifiers = 0;
    JsonStrictReader reader(json);
    reader.required("keyCode", value.keyCode).required("modifiers", modifiers);
    if (!reader.ok()) return reader.status();
    if (modifiers < std::numeric_limits<int>::min() ||
        modifiers > std::numeric_limits<int>::max()) {
        return std::unexpected(JsonError{"modifiers", "number out of range"});
    }
    value.modifiers = Modifiers{static_cast<int>(modifiers)};
    out = value;
    return {};
}

}  // namespace harbex
