#pragma once

#include <string_view>
#include <vector>

#include "HarbexClipCore/Model/ClipItem.hpp"

namespace harbex {

// The details recognised in a short text, as copied: `email`, then `oneTimeCode` or `number`,
// then `phone` (never together with `oneTimeCode`). Texts of more than 200 characters have none.
// Patterns match the whole text; only the e-mail pattern ignores case. Pure; any thread.
struct TextDetails {
    static constexpr std::size_t kMaximumCharacters = 200;

    static std::vector<ClipDetail> of(std::string_view text);
};

}  // namespace harbex
