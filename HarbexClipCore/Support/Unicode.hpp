#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace harbex {

// UTF-8 helpers over ICU. "Characters" are user-perceived characters (extended grapheme
// clusters); every function takes an exact ASCII fast path. Invalid UTF-8 never crashes: ICU
// reads each bad byte as U+FFFD. Thread: any (break iterators are per thread).

bool isValidUtf8(std::string_view text);
// The text with every invalid sequence replaced by U+FFFD, so that it can be stored and shown.
std::string sanitizedUtf8(std::string_view text);

// Byte length of the first `count` characters (all of the text when it has fewer).
std::size_t characterPrefixLength(std::string_view text, std::size_t count);
std::string_view characterPrefix(std::string_view text, std::size_t count);
std::int64_t characterCount(std::string_view text);
// Words as the locale-aware word break finds them (letters, numbers, ideographs; not spaces or
// punctuation).
std::int64_t wordCount(std::string_view text);
// Length in UTF-16 code units, as the sibling application measures text.
std::size_t utf16Length(std::string_view text);

// Decodes the code point at `offset` (U+FFFD for a bad sequence) and moves `offset` past it.
char32_t nextCodePoint(std::string_view text, std::size_t& offset);
void appendUtf8(std::string& out, char32_t codePoint);

}  // namespace harbex
