#include "HarbexClipCore/Text/FoldedText.hpp"

#include <unicode/brkiter.h>
#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include <array>
#include <memory>
#include <mutex>
#include <optional>
#include <unordered_map>

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
        const std::size_t n = run.size();
        for (std::size_t i = 0; i < n; ++i) {
            const auto c = static_cast<unsigned char>(run[i]);
            if (c == '\r' && i + 1 < n && run[i + 1] == '\n') {
                token(crLfCode());
                ++i;
                continue;
            }
            text_.bytes_.push_back(static_cast<char>(kAsciiLower[c]));
            text_.mask_ |= kAsciiBits[c];
        }
    }

    void token(std::uint32_t code) {
        text_.mask_ |= folded::characterBit(code);
        std::string& out = text_.bytes_;
        if (code < 0x80) {
            out.push_back(static_cast<char>(code));
            return;
        }
        text_.isAscii_ = false;
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

// Between two ASCII characters (other than CR LF) there is always a character boundary, and
// neither normalisation nor case folding looks across it; so ASCII stretches fold on their own
// and only the stretches around other characters go through ICU.
void foldFast(std::string_view text, FoldedTextBuilder& builder) {
    const std::size_t n = text.size();
    std::size_t i = 0;
    while (i < n) {
        std::size_t j = i;
        while (j < n && isAsciiByte(text[j])) ++j;
        if (j == n) {
            builder.asciiRun(text.substr(i));
            return;
        }
        std::size_t start = j;
        if (start > i) {
            --start;
            if (start > i && text[start - 1] == '\r' && text[start] == '\n') --start;
        }
        builder.asciiRun(text.substr(i, start - i));
        std::size_t end = j + 1;
        while (end < n && !(isAsciiByte(text[end - 1]) && isAsciiByte(text[end]) &&
                            !(text[end - 1] == '\r' && text[end] == '\n'))) {
            ++end;
        }
        foldUnicode(text.substr(start, end - start), builder);
        i = end;
    }
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
    return std::uint64_t{1} << (40 + (mixed >> 16) % 24);
}

std::size_t characterCount(std::string_view bytes) {
    std::size_t count = 0;
    for (char c : bytes) count += isContinuationByte(static_cast<unsigned char>(c)) ? 0 : 1;
    return count;
}

}  // namespace folded

}  // namespace harbex
