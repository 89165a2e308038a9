#include "HarbexClipCore/Text/ClipSearchScore.hpp"

#include <algorithm>
#include <cstring>

#include "HarbexClipCore/Text/ClipSearchEntry.hpp"

#if defined(__x86_64__)
#include <immintrin.h>
#elif defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace harbex {

namespace {

constexpr std::size_t kScatterReach = 2000;  // characters of the text a scattered match may use
constexpr std::size_t kGapLimit = 9;         // this many skipped characters end a scattered match
constexpr std::size_t kFarDistance = 1010;

bool sameBytes(const char* a, const char* b, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        if (a[i] != b[i]) return false;
    }
    return true;
}

// Candidates for an occurrence of a needle of `m` bytes are positions whose first, middle and
// last bytes match; only those are compared in full. `candidates` has a bit for each such
// position from `i` on. Returns the first occurrence among them, or npos.
std::size_t firstOccurrence(const char* h, const char* w, std::size_t m, std::size_t i,
                            std::uint32_t candidates) {
    for (; candidates != 0; candidates &= candidates - 1) {
        const auto bit = static_cast<std::size_t>(__builtin_ctz(candidates));
        if (sameBytes(h + i + bit + 1, w + 1, m - 2)) return i + bit;
    }
    return std::string_view::npos;
}

#if defined(__x86_64__)
// Thirty-two positions at a time, where the processor has AVX2 (checked once at run time).
// Leaves `i` at the first position it did not look at.
__attribute__((target("avx2"))) std::size_t findBytesAvx2(const char* h, std::size_t n,
                                                          const char* w, std::size_t m,
                                                          std::size_t& i) {
    const std::size_t middle = m / 2;
    const __m256i first = _mm256_set1_epi8(w[0]);
    const __m256i centre = _mm256_set1_epi8(w[middle]);
    const __m256i last = _mm256_set1_epi8(w[m - 1]);
    for (; i + m - 1 + 32 <= n; i += 32) {
        const __m256i a = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(h + i));
        const __m256i b = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(h + i + middle));
        const __m256i c = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(h + i + m - 1));
        const __m256i hits = _mm256_and_si256(
            _mm256_and_si256(_mm256_cmpeq_epi8(a, first), _mm256_cmpeq_epi8(b, centre)),
            _mm256_cmpeq_epi8(c, last));
        const auto candidates = static_cast<std::uint32_t>(_mm256_movemask_epi8(hits));
        if (candidates == 0) continue;
        if (const std::size_t at = firstOccurrence(h, w, m, i, candidates);
            at != std::string_view::npos) {
            return at;
        }
    }
    return std::string_view::npos;
}

bool hasAvx2() {
    static const bool has = [] {
        __builtin_cpu_init();  // may run before the library's own start-up code
        return __builtin_cpu_supports("avx2") != 0;
    }();
    return has;
}
#endif

// The first occurrence of `needle` (at least two bytes) in `haystack`. Many positions are checked
// at once for the needle's first, middle and last bytes: bodies run to tens of kilobytes, most
// of them are searched on every keystroke, and words from the same vocabulary share their first
// and last letters often.
std::size_t findBytes(std::string_view haystack, std::string_view needle) {
    const std::size_t m = needle.size();
    const std::size_t n = haystack.size();
    if (m > n) return std::string_view::npos;
    const char* h = haystack.data();
    const char* w = needle.data();
    std::size_t i = 0;
#if defined(__x86_64__)
    if (hasAvx2()) {
        if (const std::size_t at = findBytesAvx2(h, n, w, m, i); at != std::string_view::npos) {
            return at;
        }
    }
#endif
#if defined(__SSE2__)
    const std::size_t middle = m / 2;
    const __m128i first = _mm_set1_epi8(w[0]);
    const __m128i centre = _mm_set1_epi8(w[middle]);
    const __m128i last = _mm_set1_epi8(w[m - 1]);
    for (; i + m - 1 + 16 <= n; i += 16) {
        const __m128i a = _mm_loadu_si128(reinterpret_cast<const __m128i*>(h + i));
        const __m128i b = _mm_loadu_si128(reinterpret_cast<const __m128i*>(h + i + middle));
        const __m128i c = _mm_loadu_si128(reinterpret_cast<const __m128i*>(h + i + m - 1));
        const __m128i hits =
            _mm_and_si128(_mm_and_si128(_mm_cmpeq_epi8(a, first), _mm_cmpeq_epi8(b, centre)),
                          _mm_cmpeq_epi8(c, last));
        const auto candidates = static_cast<std::uint32_t>(_mm_movemask_epi8(hits));
        if (candidates == 0) continue;
        if (const std::size_t at = firstOccurrence(h, w, m, i, candidates);
            at != std::string_view::npos) {
            return at;
        }
    }
#endif
    for (; i + m <= n; ++i) {
        if (h[i] == w[0] && h[i + m - 1] == w[m - 1] && sameBytes(h + i + 1, w + 1, m - 2)) {
            return i;
        }
    }
    return std::string_view::npos;
}

std::size_t find(std::string_view haystack, std::string_view needle) {
    if (needle.size() == 1) {
        const void* at = std::memchr(haystack.data(), needle[0], haystack.size());
        return at ? static_cast<std::size_t>(static_cast<const char*>(at) - haystack.data())
                  : std::string_view::npos;
    }
    return findBytes(haystack, needle);
}

int scatteredScore(std::size_t gaps) { return std::max(20, 200 - 15 * static_cast<int>(gaps)); }

// A word of ASCII characters: each is one byte in the text too, so the text's bytes are compared
// directly and its other characters only stepped over.
std::optional<int> scatteredAsciiWord(std::string_view word, FoldedTextView text) {
    const std::string_view t = text.bytes();
    // A character takes one to four bytes, so the reach ends within this many.
    const std::size_t bytesInReach =
        std::min(t.size(), text.isAscii() ? kScatterReach : 4 * kScatterReach);
    const void* at = std::memchr(t.data(), word[0], bytesInReach);
    if (!at) return std::nullopt;
    std::size_t position = static_cast<std::size_t>(static_cast<const char*>(at) - t.data());
    // The character `position` starts, counted only once the bytes alone do not prove it in
    // reach, then kept up to date.
    std::optional<std::size_t> index;
    const auto inReach = [&] {
        if (position >= bytesInReach) return false;
        if (position < kScatterReach) return true;
        if (!index) index = folded::characterCount(t.substr(0, position));
        return *index < kScatterReach;
    };
    const auto step = [&](std::size_t bytes) {
        position += bytes;
        if (index) ++*index;
    };
    if (!inReach()) return std::nullopt;
    std::size_t gaps = 0;
    for (std::size_t k = 1; k < word.size(); ++k) {
        std::size_t skipped = 0;
        step(1);  // past the last matched character, one byte
        while (true) {
            if (!inReach()) return std::nullopt;
            if (t[position] == word[k]) break;
            if (++skipped >= kGapLimit) return std::nullopt;
            step(folded::tokenLength(static_cast<unsigned char>(t[position])));
        }
        gaps += skipped;
    }
    return scatteredScore(gaps);
}

std::optional<int> scatteredTokens(const std::vector<std::uint32_t>& word, std::string_view text) {
    std::size_t offset = 0;
    std::size_t seen = 0;
    const auto next = [&](std::uint32_t& token) {
        if (seen == kScatterReach || offset >= text.size()) return false;
        ++seen;
        token = folded::nextToken(text, offset);
        return true;
    };
    std::uint32_t token = 0;
    do {
        if (!next(token)) return std::nullopt;
    } while (token != word[0]);
    std::size_t gaps = 0;
    for (std::size_t k = 1; k < word.size(); ++k) {
        std::size_t skipped = 0;
        while (true) {
            if (!next(token)) return std::nullopt;
            if (token == word[k]) break;
            if (++skipped >= kGapLimit) return std::nullopt;
        }
        gaps += skipped;
    }
    return scatteredScore(gaps);
}

// The scattered match, for a word not found whole in the text.
std::optional<int> scattered(const ClipSearchWord& word, FoldedTextView text) {
    if (word.characters().size() < 2) return std::nullopt;
    if (word.folded().isAscii()) return scatteredAsciiWord(word.folded().bytes(), text);
    return scatteredTokens(word.characters(), text.bytes());
}

int insideScore(std::size_t distance) {
    if (distance >= kFarDistance) return 300;
    return 400 - static_cast<int>(distance / 10);
}

}  // namespace

ClipSearchWord::ClipSearchWord(FoldedText folded) : folded_(std::move(folded)) {
    const std::string_view bytes = folded_.bytes();
    for (std::size_t offset = 0; offset < bytes.size();) {
        characters_.push_back(folded::nextToken(bytes, offset));
    }
}

ClipSearchQuery ClipSearchQuery::make(std::string_view query) {
    ClipSearchQuery out;
    const FoldedText folded = FoldedText::fold(query);
    const std::string_view bytes = folded.bytes();
    // A space byte is always a whole character in folded text.
    std::size_t start = 0;
    while (start <= bytes.size()) {
        std::size_t end = bytes.find(' ', start);
        if (end == std::string_view::npos) end = bytes.size();
        if (end > start) {
            out.words.emplace_back(folded.slice(start, end - start));
        }
        start = end + 1;
    }
    return out;
}

namespace {

// `pairs` tells whether the text may contain the word whole; when it cannot, only a scattered
// match is left to look for.
std::optional<int> textScore(const ClipSearchWord& word, FoldedTextView text,
                             const unsigned char* pairs = nullptr) {
    const std::string_view q = word.folded().bytes();
    const std::string_view t = text.bytes();
    if (q.empty() || t.empty()) return std::nullopt;
    // Every way of matching needs each of the word's characters somewhere in the text.
    if ((word.folded().characterMask() & ~text.characterMask()) != 0) return std::nullopt;
    if (!BytePairSet::mayContain(pairs, q)) return scattered(word, text);
    if (t.size() >= q.size() && t[0] == q[0] && sameBytes(t.data(), q.data(), q.size())) {
        return t.size() == q.size() ? 1000 : 800;
    }
    if (const std::size_t at = find(t, q); at != std::string_view::npos) {
        // `at` > 0, since a match at the start is a prefix.
        std::size_t previous = at - 1;
        while (previous > 0 &&
               folded::isContinuationByte(static_cast<unsigned char>(t[previous]))) {
            --previous;
        }
        std::size_t cursor = previous;
        if (!folded::isLetterOrDigit(folded::nextToken(t, cursor))) return 600;
        if (text.isAscii()) return insideScore(at);
        return insideScore(folded::characterCount(t.substr(0, at)));
    }
    return scattered(word, text);
}

}  // namespace

std::optional<int> wordScore(const ClipSearchWord& word, const FoldedText& text) {
    return textScore(word, text.view());
}

std::optional<int> wordScore(const FoldedText& word, const FoldedText& text) {
    return wordScore(ClipSearchWord(word), text);
}

std::optional<int> weightedWordScore(const ClipSearchWord& word, const ClipSearchFields& fields,
                                     std::optional<int> knownAppName) {
    int best = -1;
    if (auto score = textScore(word, fields.title)) best = 3 * *score;
    // A field is scored only when it could beat the best so far: the application name gives at
    // most 2,000 and the body at most 1,000, and the body is the long one.
    if (knownAppName) {
        best = std::max(best, *knownAppName);
    } else if (best < 2000) {
        if (auto score = textScore(word, fields.appName)) best = std::max(best, 2 * *score);
    }
    if (best < 1000) {
        if (auto score = textScore(word, fields.body, fields.bodyPairs)) {
            best = std::max(best, *score);
        }
    }
    if (best < 0) return std::nullopt;
    return best;
}

std::optional<int> weightedWordScore(const ClipSearchWord& word, const ClipSearchEntry& entry) {
    return weightedWordScore(word, entry.fields());
}

std::optional<std::int64_t> entryScore(const ClipSearchQuery& query, const ClipSearchEntry& entry) {
    std::int64_t total = 0;
    for (const ClipSearchWord& word : query.words) {
        const std::optional<int> score = weightedWordScore(word, entry);
        if (!score) return std::nullopt;
        total += *score;
    }
    return total;
}

std::optional<std::int64_t> entryScore(std::string_view query, const ClipSearchEntry& entry) {
    return entryScore(ClipSearchQuery::make(query), entry);
}

}  // namespace harbex
