#include "HarbexClipCore/Settings/ClipPlatformWords.hpp"

#include "HarbexClipCore/Settings/ClipShortcut.hpp"

namespace harbex {

std::string_view fileManagerName(ClipKeyVocabulary vocabulary) {
    return vocabulary == ClipKeyVocabulary::macSymbols ? "Finder" : "Files";
}

std::string_view systemSettingsName(ClipKeyVocabulary vocabulary) {
    return vocabulary == ClipKeyVocabulary::macSymbols ? "System Settings" : "Settings";
}

std::string_view computerName(ClipKeyVocabulary vocabulary) {
    return vocabulary == ClipKeyVocabulary::macSymbols ? "Mac" : "computer";
}

std::string commandKeys(std::uint32_t keyCode, ClipKeyVocabulary vocabulary, ClipChordShift shift) {
    ClipShortcut::Modifiers modifiers = ClipShortcut::Modifiers::command;
    if (shift == ClipChordShift::with) modifiers = modifiers | ClipShortcut::Modifiers::shift;
    return displayForm(keyCode, modifiers, vocabulary);
}

}  // namespace harbex
