#include "HarbexClipCore/Text/FoldedText.hpp"

#include <unicode/brkiter.h>
#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include <array>
#include <cstring>
#include <memory>
#include <mutex>
#include <optional>
#include <unordered_map>

#include "HarbexClipCore/Support/Unicode.hpp"

namespace harbex {

namespace {

constexpr std::array<unsigned char, 128> kAsciiLower = [] {
    std::array<unsigned char, 128> table{};
    for (int c = 0; c < 128; ++c) {
        table[c] = static_cast<unsigned char>(c >= 'A' && c <= 'Z' ? c + ('a' - 'A') : c);
    }
    return table;
}();

constexpr std::array<std::uint64_t, 128> kAsciiBits = [] {
    std::array<std::uint64_t, 128> table{};
    for (int c = 0; c < 128; ++c) {
        int bit = 36 + c % 4;  // punctuation, spaces and controls share four bits
        if (c >= 'a' && c <= 'z') bit = c - 'a';
        if (c >= 'A' && c <= 'Z') bit = c - 'A';
        if (c >= '0' && c <= '9') bit = 26 + (c - '0');
        table[c] = std::uint64_t{1} << bit;
    }
    return table;
}();

constexpr std::array<bool, 128> kAsciiAlnum = [] {
    std::array<bool, 128> table{};
    for (int c = 0; c < 128; ++c) {
        table[c] = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
    }
    return table;
}();

// Characters of several code points, numbered the first time they are seen. The low bit of a
// code says whether the cluster starts with a letter or digit, so scoring never needs the table.
class ClusterTable {
public:
    std::optional<std::uint32_t> code(const std::u32string& cluster) {
        std::lock_guard lock(mutex_);
        if (auto found = codes_.find(cluster); found != codes_.end()) return found->second;
        const std::uint32_t code = folded::kFirstClusterCode + (count_ << 1) +
                                   (u_isalnum(static_cast<UChar32>(cluster.front())) ? 1 : 0);
        // When the table is full, the caller writes the code points one by one instead.
        if (code > folded::kLastClusterCode) return std::nullopt;
        ++count_;
        codes_.emplace(cluster, code);
        return code;
    }

private:
    std::mutex mutex_;
    std::unordered_map<std::u32string, std::uint32_t> codes_;
    std::uint32_t count_ = 0;
};

ClusterTable& clusterTable() {
    // Never destroyed: folding may run on another thread while the process exits.
    static auto* table = new ClusterTable;
    return *table;
}

std::uint32_t crLfCode() {
    static const std::uint32_t code = *clusterTable().code(U"\r\n");
    return code;
}

}  // namespace

// Appends tokens and keeps the mask and the ASCII flag in step.
class FoldedTextBuilder {
public:
    explicit FoldedTextBuilder(std::size_t expectedBytes) { text_.bytes_.reserve(expectedBytes); }

    void asciiRun(std::string_view run) {
        // CR LF is the one pair of ASCII characters that makes a single character.
        while (!run.empty()) {
            std::size_t end = run.find("\r\n");
            if (end == std::string_view::npos) end = run.size();
            lowerAscii(run.substr(0, end));
            if (end == run.size()) return;
            token(crLfCode());
            run.remove_prefix(end + 2);
        }
    }

    void token(std::uint32_t code) {
        text_.mask_ |= folded::characterBit(code);
        std::string& out = text_.bytes_;
        if (code < 0x80) {
            out.push_back(static_cast<char>(code));
            return;
        }
        if (code < 0x800) {
            out.push_back(static_cast<char>(0xC0 | (code >> 6)));
        } else if (code < 0x10000) {
            out.push_back(static_cast<char>(0xE0 | (code >> 12)));
            out.push_back(static_cast<char>(0x80 | ((code >> 6) & 0x3F)));
        } else {
            out.push_back(static_cast<char>(0xF0 | (code >> 18)));
            out.push_back(static_cast<char>(0x80 | ((code >> 12) & 0x3F)));
            out.push_back(static_cast<char>(0x80 | ((code >> 6) & 0x3F)));
        }
        out.push_back(static_cast<char>(0x80 | (code & 0x3F)));
    }

    void lowerAscii(std::string_view run) {
        std::string& out = text_.bytes_;
        const std::size_t base = out.size();
        std::uint64_t mask = 0;
        out.append(run);
        char* target = out.data() + base;
        for (const char c : run) {
            const auto byte = static_cast<unsigned char>(c);
            *target++ = static_cast<char>(kAsciiLower[byte]);
            mask |= kAsciiBits[byte];
        }
        text_.mask_ |= mask;
    }

    FoldedText finish() {
        text_.bytes_.shrink_to_fit();
        return std::move(text_);
    }

private:
    FoldedText text_;
};

namespace {

struct Normalizers {
    const icu::Normalizer2* nfd = nullptr;
    const icu::Normalizer2* nfkd = nullptr;
    const icu::Normalizer2* nfc = nullptr;
};

const Normalizers& normalizers() {
    static const Normalizers instances = [] {
        UErrorCode status = U_ZERO_ERROR;
        Normalizers n;
        n.nfd = icu::Normalizer2::getNFDInstance(status);
        n.nfkd = icu::Normalizer2::getNFKDInstance(status);
        n.nfc = icu::Normalizer2::getNFCInstance(status);
        return n;
    }();
    return instances;
}

icu::BreakIterator* characterIterator() {
    thread_local std::unique_ptr<icu::BreakIterator> iterator = [] {
        UErrorCode status = U_ZERO_ERROR;
        std::unique_ptr<icu::BreakIterator> made(
            icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
        if (U_FAILURE(status)) made.reset();
        return made;
    }();
    return iterator.get();
}

icu::UnicodeString normalized(const icu::Normalizer2* normalizer, const icu::UnicodeString& s) {
    if (!normalizer) return s;
    UErrorCode status = U_ZERO_ERROR;
    icu::UnicodeString out = normalizer->normalize(s, status);
    return U_FAILURE(status) ? s : out;
}

// Full-width and half-width forms become their ordinary forms.
icu::UnicodeString widthFolded(const icu::UnicodeString& s, const icu::Normalizer2* nfkd) {
    icu::UnicodeString out;
    for (int32_t i = 0; i < s.length();) {
        const UChar32 c = s.char32At(i);
        i += U16_LENGTH(c);
        const int type = u_getIntPropertyValue(c, UCHAR_DECOMPOSITION_TYPE);
        icu::UnicodeString decomposition;
        if ((type == U_DT_WIDE || type == U_DT_NARROW) && nfkd &&
            nfkd->getDecomposition(c, decomposition)) {
            out += decomposition;
        } else {
            out.append(c);
        }
    }
    return out;
}

icu::UnicodeString withoutNonspacingMarks(const icu::UnicodeString& s) {
    icu::UnicodeString out;
    for (int32_t i = 0; i < s.length();) {
        const UChar32 c = s.char32At(i);
        i += U16_LENGTH(c);
        if (u_charType(c) != U_NON_SPACING_MARK) out.append(c);
    }
    return out;
}

// The whole ICU road for one stretch of text: decompose, fold width and case, drop the marks
// that diacritics decompose into, recompose, and write one token per grapheme cluster.
void foldUnicode(std::string_view text, FoldedTextBuilder& builder) {
    const Normalizers& n = normalizers();
    icu::UnicodeString s = icu::UnicodeString::fromUTF8(
        icu::StringPiece(text.data(), static_cast<int32_t>(text.size())));
    s = normalized(n.nfd, s);
    s = widthFolded(s, n.nfkd);
    s.foldCase(U_FOLD_CASE_DEFAULT);
    s = normalized(n.nfd, s);
    s = withoutNonspacingMarks(s);
    s = normalized(n.nfc, s);

    icu::BreakIterator* iterator = characterIterator();
    const auto clusterAt = [&](int32_t start, int32_t end) {
        const UChar32 first = s.char32At(start);
        if (start + U16_LENGTH(first) >= end) {
            builder.token(static_cast<std::uint32_t>(first));
            return;
        }
        std::u32string cluster;
        for (int32_t i = start; i < end;) {
            const UChar32 c = s.char32At(i);
            i += U16_LENGTH(c);
            cluster.push_back(static_cast<char32_t>(c));
        }
        if (auto code = clusterTable().code(cluster)) {
            builder.token(*code);
        } else {
            for (char32_t c : cluster) builder.token(c);
        }
    };
    if (!iterator) {
        for (int32_t i = 0; i < s.length(); i += U16_LENGTH(s.char32At(i))) {
            clusterAt(i, i + U16_LENGTH(s.char32At(i)));
        }
        return;
    }
    iterator->setText(s);
    int32_t start = iterator->first();
    for (int32_t end = iterator->next(); end != icu::BreakIterator::DONE;
         start = end, end = iterator->next()) {
        clusterAt(start, end);
    }
}

bool isAsciiByte(char c) { return static_cast<unsigned char>(c) < 0x80; }

std::size_t asciiRunEnd(std::string_view text, std::size_t i) {
    constexpr std::uint64_t kHighBits = 0x8080808080808080ull;
    while (i + 8 <= text.size()) {
        std::uint64_t word;
        std::memcpy(&word, text.data() + i, 8);
        if (word & kHighBits) break;
        i += 8;
    }
    while (i < text.size() && isAsciiByte(text[i])) ++i;
    return i;
}

// Between two ASCII characters (other than CR LF) there is always a character boundary, and
// neither normalisation nor case folding looks across it. So text splits into ASCII runs and,
// between them, stretches around the other characters (with an ASCII character on each side
// that has one). Each callback returns whether to go on.
template <class Ascii, class Other>
void forEachPiece(std::string_view text, Ascii ascii, Other other) {
    const std::size_t n = text.size();
    std::size_t i = 0;
    while (i < n) {
        const std::size_t j = asciiRunEnd(text, i);
        if (j == n) {
            ascii(text.substr(i));
            return;
        }
        std::size_t start = j;
        if (start > i) {
            --start;
            if (start > i && text[start - 1] == '\r' && text[start] == '\n') --start;
        }
        if (start > i && !ascii(text.substr(i, start - i))) return;
        std::size_t end = j + 1;
        while (end < n && !(isAsciiByte(text[end - 1]) && isAsciiByte(text[end]) &&
                            !(text[end - 1] == '\r' && text[end] == '\n'))) {
            ++end;
        }
        if (!other(text.substr(start, end - start))) return;
        i = end;
    }
}

// How a code point folds when it stands between characters it cannot join or normalise with.
struct CodePointFold {
    bool standsAlone = false;
    std::uint8_t count = 0;
    std::array<std::uint32_t, 4> tokens{};
};

bool isPlainStarter(UChar32 c, const Normalizers& n) {
    return u_getIntPropertyValue(c, UCHAR_GRAPHEME_CLUSTER_BREAK) == U_GCB_OTHER &&
           n.nfd->hasBoundaryBefore(c) && n.nfc->hasBoundaryBefore(c);
}

std::string foldedBytes(std::string_view text) {
    FoldedTextBuilder builder(text.size());
    foldUnicode(text, builder);
    return std::string(builder.finish().bytes());
}

CodePointFold computeCodePointFold(char32_t c) {
    CodePointFold out;
    const Normalizers& n = normalizers();
    const auto code = static_cast<UChar32>(c);
    // U+FFFD may stand for bad bytes, which ICU and the decoder may split differently.
    if (c == U'\uFFFD' || !n.nfd || !n.nfc || !isPlainStarter(code, n)) return out;
    std::string alone;
    appendUtf8(alone, c);
    const std::string folded = foldedBytes(alone);
    for (std::size_t offset = 0; offset < folded.size();) {
        const std::uint32_t token = folded::nextToken(folded, offset);
        if (token >= folded::kFirstClusterCode || out.count == out.tokens.size() ||
            !isPlainStarter(static_cast<UChar32>(token), n)) {
            return out;
        }
        out.tokens[out.count++] = token;
    }
    // The same fold must come out beside letters and beside itself.
    if (foldedBytes("a" + alone + "b") != "a" + folded + "b" ||
        foldedBytes(alone + alone) != folded + folded) {
        return out;
    }
    out.standsAlone = true;
    return out;
}

CodePointFold codePointFold(char32_t c) {
    thread_local std::unordered_map<char32_t, CodePointFold> cache;
    if (auto found = cache.find(c); found != cache.end()) return found->second;
    if (cache.size() >= 4096) cache.clear();
    return cache.emplace(c, computeCodePointFold(c)).first->second;
}

// Most text outside ASCII is letters that fold on their own (accented Latin, CJK, Cyrillic):
// they fold one at a time from a cache; stretches with marks, joiners, flags or Hangul jamo go
// through ICU whole.
void foldOther(std::string_view text, FoldedTextBuilder& builder) {
    for (std::size_t offset = 0; offset < text.size();) {
        if (isAsciiByte(text[offset])) {
            ++offset;
            continue;
        }
        if (!codePointFold(nextCodePoint(text, offset)).standsAlone) {
            foldUnicode(text, builder);
            return;
        }
    }
    std::size_t offset = 0;
    while (offset < text.size()) {
        if (isAsciiByte(text[offset])) {
            const std::size_t end = asciiRunEnd(text, offset);
            builder.asciiRun(text.substr(offset, end - offset));
            offset = end;
            continue;
        }
        const CodePointFold fold = codePointFold(nextCodePoint(text, offset));
        for (std::uint8_t i = 0; i < fold.count; ++i) builder.token(fold.tokens[i]);
    }
}

void foldFast(std::string_view text, FoldedTextBuilder& builder) {
    forEachPiece(
        text,
        [&](std::string_view run) {
            builder.asciiRun(run);
            return true;
        },
        [&](std::string_view other) {
            foldOther(other, builder);
            return true;
        });
}

}  // namespace

FoldedText FoldedText::fold(std::string_view text, FoldingPath path) {
    FoldedTextBuilder builder(text.size());
    if (path == FoldingPath::fast) {
        foldFast(text, builder);
    } else {
        foldUnicode(text, builder);
    }
    return builder.finish();
}

FoldedText FoldedText::slice(std::size_t offset, std::size_t length) const {
    const std::string_view part = bytes().substr(offset, length);
    FoldedTextBuilder builder(part.size());
    for (std::size_t i = 0; i < part.size();) builder.token(folded::nextToken(part, i));
    return builder.finish();
}

std::size_t FoldedText::heapBytes() const {
    // Short strings live inside the object.
    return bytes_.capacity() > 15 ? bytes_.capacity() + 1 : 0;
}

namespace folded {

bool isLetterOrDigit(std::uint32_t token) {
    if (token < 0x80) return kAsciiAlnum[token];
    if (token < kFirstClusterCode) return u_isalnum(static_cast<UChar32>(token));
    return (token & 1) != 0;
}

std::uint64_t characterBit(std::uint32_t token) {
    if (token < 0x80) return kAsciiBits[token];
    const std::uint32_t mixed = token * 0x9E3779B1u;
    return kOutsideAsciiBit | std::uint64_t{1} << (40 + (mixed >> 16) % 23);
}

std::size_t characterCount(std::string_view bytes) {
    // Eight bytes at a time: a byte starts a character unless it is 10xxxxxx; the starts, as one
    // bit at the bottom of each byte, are summed by a multiplication.
    constexpr std::uint64_t kHighBits = 0x8080808080808080u;
    constexpr std::uint64_t kEachByte = 0x0101010101010101u;
    std::size_t count = 0;
    std::size_t i = 0;
    for (; i + 8 <= bytes.size(); i += 8) {
        std::uint64_t chunk = 0;
        std::memcpy(&chunk, bytes.data() + i, 8);
        const std::uint64_t starts = ((~chunk | (chunk << 1)) & kHighBits) >> 7;
        count += static_cast<std::size_t>((starts * kEachByte) >> 56);
    }
    for (; i < bytes.size(); ++i) {
        count += isContinuationByte(static_cast<unsigned char>(bytes[i])) ? 0 : 1;
    }
    return count;
}

}  // namespace folded

}  // namespace harbex
