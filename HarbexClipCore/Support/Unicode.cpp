#include "HarbexClipCore/Support/Unicode.hpp"

#include <unicode/brkiter.h>
#include <unicode/utext.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <memory>
#include <optional>

namespace harbex {

namespace {

bool isAscii(unsigned char c) { return c < 0x80; }

// Break iterators are costly to make; keep one of each kind per thread.
icu::BreakIterator* threadIterator(bool words) {
    thread_local std::unique_ptr<icu::BreakIterator> characters;
    thread_local std::unique_ptr<icu::BreakIterator> wordIterator;
    auto& slot = words ? wordIterator : characters;
    if (!slot) {
        UErrorCode status = U_ZERO_ERROR;
        slot.reset(
            words ? icu::BreakIterator::createWordInstance(icu::Locale::getDefault(), status)
                  : icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
        if (U_FAILURE(status)) slot.reset();
    }
    return slot.get();
}

// Points the iterator at UTF-8 text without converting it; offsets stay byte offsets.
struct Utf8Text {
    UText* text = nullptr;
    explicit Utf8Text(std::string_view source) {
        UErrorCode status = U_ZERO_ERROR;
        text = utext_openUTF8(nullptr, source.data(), static_cast<int64_t>(source.size()), &status);
        if (U_FAILURE(status)) text = nullptr;
    }
    ~Utf8Text() {
        if (text) utext_close(text);
    }
};

// Where the ASCII fast path must stop: the first non-ASCII byte, backed up one byte, since a
// combining mark joins the character before it.
// Looks at no more than `limit` bytes, so that a prefix of a huge text costs what the prefix does.
std::size_t safeAsciiRun(std::string_view text, std::size_t limit = std::string_view::npos) {
    const std::size_t end = std::min(text.size(), limit);
    std::size_t i = 0;
    while (i < end && isAscii(static_cast<unsigned char>(text[i]))) ++i;
    if (i < text.size() && i > 0) --i;
    return i;
}

}  // namespace

bool isValidUtf8(std::string_view text) {
    std::size_t i = 0;
    while (i < text.size()) {
        if (isAscii(static_cast<unsigned char>(text[i]))) {
            ++i;
            continue;
        }
        UChar32 c;
        int32_t offset = static_cast<int32_t>(i);
        U8_NEXT(reinterpret_cast<const uint8_t*>(text.data()), offset,
                static_cast<int32_t>(text.size()), c);
        if (c < 0) return false;
        i = static_cast<std::size_t>(offset);
    }
    return true;
}

std::string sanitizedUtf8(std::string_view text) {
    if (isValidUtf8(text)) return std::string(text);
    std::string out;
    out.reserve(text.size());
    std::size_t offset = 0;
    while (offset < text.size()) appendUtf8(out, nextCodePoint(text, offset));
    return out;
}

char32_t nextCodePoint(std::string_view text, std::size_t& offset) {
    UChar32 c;
    int32_t i = static_cast<int32_t>(offset);
    U8_NEXT(reinterpret_cast<const uint8_t*>(text.data()), i, static_cast<int32_t>(text.size()), c);
    offset = static_cast<std::size_t>(i);
    return c < 0 ? U'\uFFFD' : static_cast<char32_t>(c);
}

void appendUtf8(std::string& out, char32_t codePoint) {
    uint8_t buffer[4];
    int32_t length = 0;
    UBool error = false;
    U8_APPEND(buffer, length, 4, static_cast<UChar32>(codePoint), error);
    if (error) {
        out += "\xEF\xBF\xBD";
        return;
    }
    out.append(reinterpret_cast<const char*>(buffer), static_cast<std::size_t>(length));
}

std::size_t characterPrefixLength(std::string_view text, std::size_t count) {
    // ASCII counts a byte a character (CR LF is one); only the stretches around other characters
    // go through the break iterator. Between two ASCII bytes other than CR LF there is always a
    // boundary, so the count can leave the iterator at any such place and come back to it.
    const auto asciiAt = [&](std::size_t i) {
        return i >= text.size() || isAscii(static_cast<unsigned char>(text[i]));
    };
    icu::BreakIterator* iterator = nullptr;
    std::optional<Utf8Text> utext;
    std::size_t i = 0;  // always a boundary
    std::size_t seen = 0;
    while (seen < count && i < text.size()) {
        if (asciiAt(i) && asciiAt(i + 1)) {
            i += (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n') ? 2 : 1;
            ++seen;
            continue;
        }
        if (!iterator) {
            iterator = threadIterator(false);
            utext.emplace(text);
            if (!iterator || !utext->text) return text.size();
            UErrorCode status = U_ZERO_ERROR;
            iterator->setText(utext->text, status);
        }
        const int32_t next = iterator->current() == static_cast<int32_t>(i)
                                 ? iterator->next()
                                 : iterator->following(static_cast<int32_t>(i));
        if (next == icu::BreakIterator::DONE) return text.size();
        i = static_cast<std::size_t>(next);
        ++seen;
    }
    return std::min(i, text.size());
}

std::string_view characterPrefix(std::string_view text, std::size_t count) {
    return text.substr(0, characterPrefixLength(text, count));
}

std::int64_t characterCount(std::string_view text) {
    const std::size_t run = safeAsciiRun(text);
    std::int64_t count = 0;
    std::size_t i = 0;
    while (i < run) {
        i += (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n') ? 2 : 1;
        ++count;
    }
    if (i >= text.size()) return count;
    icu::BreakIterator* iterator = threadIterator(false);
    Utf8Text utext(text.substr(i));
    if (!iterator || !utext.text) return count + static_cast<std::int64_t>(text.size() - i);
    UErrorCode status = U_ZERO_ERROR;
    iterator->setText(utext.text, status);
    iterator->first();
    while (iterator->next() != icu::BreakIterator::DONE) ++count;
    return count;
}

std::int64_t wordCount(std::string_view text) {
    if (text.empty()) return 0;
    icu::BreakIterator* iterator = threadIterator(true);
    Utf8Text utext(text);
    if (!iterator || !utext.text) return 0;
    UErrorCode status = U_ZERO_ERROR;
    iterator->setText(utext.text, status);
    std::int64_t count = 0;
    iterator->first();
    while (iterator->next() != icu::BreakIterator::DONE) {
        if (iterator->getRuleStatus() >= UBRK_WORD_NONE_LIMIT) ++count;
    }
    return count;
}

std::size_t utf16Length(std::string_view text) {
    std::size_t units = 0;
    std::size_t offset = 0;
    while (offset < text.size()) {
        if (isAscii(static_cast<unsigned char>(text[offset]))) {
            ++offset;
            ++units;
            continue;
        }
        units += nextCodePoint(text, offset) > 0xFFFF ? 2 : 1;
    }
    return units;
}

}  // namespace harbex
