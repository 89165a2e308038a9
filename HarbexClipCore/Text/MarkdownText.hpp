#pragma once

#include <string>
#include <string_view>

namespace harbex {

// Markdown to plain text: headings, emphasis, code marks, images (their alt text stays), links
// (their text stays), block quotes, list bullets and strike-through are taken out by a fixed
// sequence of regular-expression replacements. Images go before links so that an image leaves
// only its alt text. Thread: any.
std::string plainTextFromMarkdown(std::string_view markdown);

}  // namespace harbex
