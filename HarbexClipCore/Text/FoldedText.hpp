#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace harbex {

namespace folded {
// Set in a character mask for every character outside ASCII.
inline constexpr std::uint64_t kOutsideAsciiBit = std::uint64_t{1} << 63;
}  // namespace folded

// Folded bytes and their character mask, held elsewhere: the search index keeps the texts of
// all copies in one block. Valid while what it looks at is. Thread: any (a value).
class FoldedTextView {
public:
    FoldedTextView() = default;
    FoldedTextView(std::string_view bytes, std::uint64_t mask) : bytes_(bytes), mask_(mask) {}

    std::string_view bytes() const { return bytes_; }
    FoldedTextView view() const { return {bytes_, mask_}; }
    bool empty() const { return bytes_.empty(); }
    bool isAscii() const { return (mask_ & folded::kOutsideAsciiBit) == 0; }
    std::uint64_t characterMask() const { return mask_; }

private:
    std::string_view bytes_;
    std::uint64_t mask_ = 0;
};

// Which road folding takes. Both give the same bytes; `unicodeOnly` exists so that tests and the
// fuzzer can hold the fast ASCII road to the plain ICU one.
enum class FoldingPath { fast, unicodeOnly };

// Text folded for search: case, diacritics and character width ignored, without locale ("Café",
// "CAFE" and "ｃａｆｅ" fold alike; "ß" folds to "ss").
//
// The bytes hold one token per user-perceived character (grapheme cluster), so that searching
// can count characters by counting tokens. A character of one code point is its UTF-8 form; a
// character of several (an emoji with a skin tone, a flag, CR LF) is one code above U+10FFFF,
// written in the same 4-byte pattern as UTF-8, from a process-wide table of such clusters. The
// pattern keeps UTF-8's property that a lead byte never looks like a continuation byte, so a
// plain byte search finds only whole characters, and byte equality is character equality.
// The bytes are for matching only, never for display. Thread: any (a value).
class FoldedText {
public:
    FoldedText() = default;
    // A copy of text that was folded before.
    explicit FoldedText(FoldedTextView folded)
        : bytes_(folded.bytes()), mask_(folded.characterMask()) {}

    // Folds `text` (any bytes; an invalid UTF-8 sequence reads as U+FFFD). Thread: any; a
    // character of several code points takes a process-wide lock the first time it is seen.
    static FoldedText fold(std::string_view text, FoldingPath path = FoldingPath::fast);

    // The characters in [offset, offset + length) of the bytes, which must start and end at
    // character boundaries.
    FoldedText slice(std::size_t offset, std::size_t length) const;

    std::string_view bytes() const { return bytes_; }
    FoldedTextView view() const { return {bytes_, mask_}; }
    bool empty() const { return bytes_.empty(); }
    // Whether every character is one ASCII byte, so that byte offsets count characters.
    bool isAscii() const { return (mask_ & folded::kOutsideAsciiBit) == 0; }
    // One bit per kind of character present (see `characterBit`): a text can only contain a
    // word whose bits are all set here.
    std::uint64_t characterMask() const { return mask_; }
    // Heap bytes held beyond the object itself.
    std::size_t heapBytes() const;

    friend bool operator==(const FoldedText&, const FoldedText&) = default;

private:
    friend class FoldedTextBuilder;
    std::string bytes_;
    // Also says whether the text is ASCII, so that the object stays five words long: the index
    // holds three of these for every copy in the history.
    std::uint64_t mask_ = 0;
};

namespace folded {

// Codes from here up name characters of several code points.
inline constexpr std::uint32_t kFirstClusterCode = 0x110000;
inline constexpr std::uint32_t kLastClusterCode = 0x1FFFFF;

inline bool isContinuationByte(unsigned char byte) { return (byte & 0xC0) == 0x80; }

// The token starting at `offset` (which must be a token start in folded bytes); moves `offset`
// past it.
inline std::uint32_t nextToken(std::string_view bytes, std::size_t& offset) {
    const auto* p = reinterpret_cast<const unsigned char*>(bytes.data()) + offset;
    const unsigned char lead = p[0];
    if (lead < 0x80) {
        offset += 1;
        return lead;
    }
    if (lead < 0xE0) {
        offset += 2;
        return (std::uint32_t(lead & 0x1F) << 6) | (p[1] & 0x3F);
    }
    if (lead < 0xF0) {
        offset += 3;
        return (std::uint32_t(lead & 0x0F) << 12) | (std::uint32_t(p[1] & 0x3F) << 6) |
               (p[2] & 0x3F);
    }
    offset += 4;
    return (std::uint32_t(lead & 0x07) << 18) | (std::uint32_t(p[1] & 0x3F) << 12) |
           (std::uint32_t(p[2] & 0x3F) << 6) | (p[3] & 0x3F);
}

// Whether a character is a letter or a decimal digit (for a cluster: its first code point).
bool isLetterOrDigit(std::uint32_t token);

// The bit of `characterMask` for a token.
std::uint64_t characterBit(std::uint32_t token);

// The number of characters (tokens) in folded bytes.
std::size_t characterCount(std::string_view bytes);

// The bytes of the character whose first byte is `lead`.
inline std::size_t tokenLength(unsigned char lead) {
    return lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
}

}  // namespace folded

}  // namespace harbex
