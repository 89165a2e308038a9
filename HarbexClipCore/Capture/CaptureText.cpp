#include "HarbexClipCore/Capture/CaptureText.hpp"

#include <unicode/uchar.h>
#include <unicode/utf8.h>

#include "HarbexClipCore/Support/Unicode.hpp"

namespace harbex {

bool isWhiteSpaceCodePoint(char32_t c) { return u_isUWhiteSpace(UChar32(c)); }

bool isLineBreakCodePoint(char32_t c) {
    return (c >= 0x0A && c <= 0x0D) || c == 0x85 || c == 0x2028 || c == 0x2029;
}

std::string_view trimmingWhiteSpace(std::string_view text) {
    std::size_t start = 0;
    while (start < text.size()) {
        std::size_t next = start;
        if (!isWhiteSpaceCodePoint(nextCodePoint(text, next))) break;
        start = next;
    }
    text.remove_prefix(start);
    auto* bytes = reinterpret_cast<const std::uint8_t*>(text.data());
    int32_t end = int32_t(text.size());
    while (end > 0) {
        int32_t previous = end;
        UChar32 c = 0;
        U8_PREV(bytes, 0, previous, c);
        if (c < 0 || !isWhiteSpaceCodePoint(char32_t(c))) break;
        end = previous;
    }
    return text.substr(0, std::size_t(end));
}

bool containsLineBreak(std::string_view text) {
    for (std::size_t offset = 0; offset < text.size();) {
        if (isLineBreakCodePoint(nextCodePoint(text, offset))) return true;
    }
    return false;
}

bool containsWhiteSpace(std::string_view text) {
    for (std::size_t offset = 0; offset < text.size();) {
        if (isWhiteSpaceCodePoint(nextCodePoint(text, offset))) return true;
    }
    return false;
}

bool hasMoreCharactersThan(std::string_view text, std::size_t limit) {
    if (text.size() <= limit) return false;  // a character takes at least one byte
    return characterPrefixLength(text, limit) < text.size();
}

}  // namespace harbex
