#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace harbex {

// A best guess at the programming language of a code copy, from tell-tale words and marks (a
// `fn` with `println!`, a `def` with `self.`, a `<?php`). It names a language only when the
// evidence is clear, so a copy that could be several says nothing rather than something wrong.
// Pure; any thread.
class ClipCodeLanguage {
public:
    // Only the start of a long copy is read: the tell-tale lines come first.
    static constexpr std::size_t kReadCharacters = 4000;
    // A language needs at least this much evidence, and more than any other language.
    static constexpr int kLeastScore = 4;

    // The names of every language the guess knows, in a fixed order.
    static std::vector<std::string> knownNames();

    // The language of `text` among `languages` (names from knownNames; others are ignored), or
    // nothing when no language stands out.
    static std::optional<std::string> guess(std::string_view text,
                                            std::span<const std::string> languages);
};

}  // namespace harbex
