#pragma once

#include <string_view>

namespace harbex {

// Small text scans shared by the capture rules and detection. Pure; any thread; invalid UTF-8
// reads as U+FFFD and never crashes.

bool isWhiteSpaceCodePoint(char32_t c);
// Line feed, vertical tab, form feed, carriage return, NEL, U+2028, U+2029.
bool isLineBreakCodePoint(char32_t c);

// The text without white space and line breaks at either end.
std::string_view trimmingWhiteSpace(std::string_view text);
bool containsLineBreak(std::string_view text);
bool containsWhiteSpace(std::string_view text);

// Whether the text has more than `limit` characters (grapheme clusters); looks at no more than
// the first limit + 1 of them.
bool hasMoreCharactersThan(std::string_view text, std::size_t limit);

}  // namespace harbex
