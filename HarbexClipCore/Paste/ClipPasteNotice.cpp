#include "HarbexClipCore/Paste/ClipPasteNotice.hpp"

#include "HarbexClipCore/Paste/ClipStackSequence.hpp"

namespace harbex {

std::string ClipPasteNotice::copied(ClipKeyVocabulary vocabulary) {
    return "Copied, press " + pasteKeys(vocabulary);
}

}  // namespace harbex
