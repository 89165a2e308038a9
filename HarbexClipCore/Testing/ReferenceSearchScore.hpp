#pragma once

#include <optional>

#include "HarbexClipCore/Text/FoldedText.hpp"

namespace harbex {

// The word score written as plainly as possible, one character at a time over decoded
// characters, for holding the fast scorer to. Thread: any.
std::optional<int> referenceWordScore(const FoldedText& word, const FoldedText& text);

}  // namespace harbex
