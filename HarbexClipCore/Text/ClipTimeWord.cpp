#include "HarbexClipCore/Text/ClipTimeWord.hpp"

#include <unicode/ustring.h>

#include <utility>
#include <vector>

#include "HarbexClipCore/Support/Unicode.hpp"

namespace harbex {

namespace {

// The query lower-cased, with each lower-cased byte mapped back to the character it came from,
// so that a phrase found in the lower-cased text is cut from the query as typed.
struct LoweredQuery {
    std::string text;
    std::vector<std::size_t> sourceStart;
    std::vector<std::size_t> sourceEnd;
};

LoweredQuery lowered(std::string_view query) {
    LoweredQuery out;
    out.text.reserve(query.size());
    std::size_t offset = 0;
    while (offset < query.size()) {
        const std::size_t start = offset;
        const auto byte = static_cast<unsigned char>(query[offset]);
        std::string piece;
        if (byte < 0x80) {
            piece.push_back(static_cast<char>(byte >= 'A' && byte <= 'Z' ? byte + 32 : byte));
            ++offset;
        } else {
            const char32_t c = nextCodePoint(query, offset);
            UChar source[2];
            int32_t sourceLength = 0;
            U16_APPEND_UNSAFE(source, sourceLength, static_cast<UChar32>(c));
            UChar lower[8];
            UErrorCode status = U_ZERO_ERROR;
            const int32_t length = u_strToLower(lower, 8, source, sourceLength, "", &status);
            if (U_FAILURE(status)) {
                appendUtf8(piece, c);
            } else {
                for (int32_t i = 0; i < length;) {
                    UChar32 l;
                    U16_NEXT(lower, i, length, l);
                    appendUtf8(piece, static_cast<char32_t>(l));
                }
            }
        }
        out.text += piece;
        out.sourceStart.insert(out.sourceStart.end(), piece.size(), start);
        out.sourceEnd.insert(out.sourceEnd.end(), piece.size(), offset);
    }
    return out;
}

// The phrases, longest first; phrases of equal length keep their declaration order.
std::vector<std::pair<ClipTimeWord, std::string_view>> phrasesLongestFirst() {
    std::vector<std::pair<ClipTimeWord, std::string_view>> phrases(
        EnumNames<ClipTimeWord>::values.begin(), EnumNames<ClipTimeWord>::values.end());
    // Insertion sort: stable, and std::stable_sort trips a deprecation in clang over libstdc++.
    for (std::size_t i = 1; i < phrases.size(); ++i) {
        for (std::size_t j = i; j > 0 && phrases[j - 1].second.size() < phrases[j].second.size();
             --j) {
            std::swap(phrases[j - 1], phrases[j]);
        }
    }
    return phrases;
}

}  // namespace

ClipTimeWordMatch extractTimeWord(std::string_view query) {
    static const auto phrases = phrasesLongestFirst();
    const LoweredQuery lower = lowered(query);
    const std::string_view text = lower.text;
    for (const auto& [timeWord, phrase] : phrases) {
        for (std::size_t at = text.find(phrase); at != std::string_view::npos;
             at = text.find(phrase, at + 1)) {
            const std::size_t after = at + phrase.size();
            const bool startsWord = at == 0 || text[at - 1] == ' ';
            const bool endsWord = after == text.size() || text[after] == ' ';
            if (!startsWord || !endsWord) continue;
            const std::size_t cutStart = lower.sourceStart[at];
            const std::size_t cutEnd = lower.sourceEnd[after - 1];
            std::string rest(query.substr(0, cutStart));
            rest += query.substr(cutEnd);
            return {std::move(rest), timeWord};
        }
    }
    return {std::string(query), std::nullopt};
}

ClipDateRange dateRange(ClipTimeWord timeWord, Date now, const Calendar& calendar) {
    const Date startOfToday = calendar.startOfDay(now);
    const Date soon = now + 1.0;
    switch (timeWord) {
        case ClipTimeWord::today: return {startOfToday, soon};
        case ClipTimeWord::yesterday: return {calendar.addingDays(startOfToday, -1), startOfToday};
        case ClipTimeWord::thisWeek: return {calendar.startOfWeek(now), soon};
        case ClipTimeWord::lastWeek: {
            const Date startOfWeek = calendar.startOfWeek(now);
            return {calendar.addingDays(startOfWeek, -7), startOfWeek};
        }
        case ClipTimeWord::thisMonth: return {calendar.startOfMonth(now), soon};
    }
    return {startOfToday, soon};
}

}  // namespace harbex
