#pragma once

#include <string>
#include <string_view>

#include "HarbexClipCore/Settings/ClipKeyCodes.hpp"

namespace harbex {

// The short notices a paste or copy leaves in the panel or the library, whichever asked.
// Thread: any.
struct ClipPasteNotice {
    static constexpr std::string_view kCannotPaste = "That copy can’t be pasted";
    static constexpr std::string_view kCannotCopy = "That copy can’t be copied";
    // "Copied, press ⌘V" / "Copied, press Ctrl+V": the copy is on the clipboard and no paste was
    // typed.
    static std::string copied(ClipKeyVocabulary vocabulary);
};

}  // namespace harbex
