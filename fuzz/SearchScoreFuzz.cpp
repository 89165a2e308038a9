// Holds the fast word scorer and the fast folding road to their plain counterparts on any bytes,
// runs the time-word cut over the same bytes, holds the entry score (character masks, the long
// body's byte pairs) to the plain scorer, and holds the index, typing the query a byte at a time
// and taking it back, to a search that starts afresh each time.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>

#include "HarbexClipCore/Model/ClipItem.hpp"
#include "HarbexClipCore/Support/Calendar.hpp"
#include "HarbexClipCore/Testing/ReferenceSearchScore.hpp"
#include "HarbexClipCore/Text/ClipSearchEntry.hpp"
#include "HarbexClipCore/Text/ClipSearchIndex.hpp"
#include "HarbexClipCore/Text/ClipSearchScore.hpp"
#include "HarbexClipCore/Text/ClipTimeWord.hpp"
#include "HarbexClipCore/Text/FoldedText.hpp"

namespace {

using harbex::FoldedText;
using harbex::FoldingPath;

void require(bool condition, const char* what) {
    if (condition) return;
    std::fprintf(stderr, "mismatch: %s\n", what);
    std::abort();
}

FoldedText foldBothWays(std::string_view text) {
    FoldedText fast = FoldedText::fold(text, FoldingPath::fast);
    require(fast == FoldedText::fold(text, FoldingPath::unicodeOnly), "fast folding");
    return fast;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    // The first byte says where the query ends and the text begins.
    const std::string_view input(reinterpret_cast<const char*>(data) + 1, size - 1);
    const std::size_t split = input.empty() ? 0 : data[0] % (input.size() + 1);
    const std::string_view query = input.substr(0, split);
    const std::string_view text = input.substr(split);

    const FoldedText foldedQuery = foldBothWays(query);
    const FoldedText foldedText = foldBothWays(text);
    require(harbex::wordScore(foldedQuery, foldedText) ==
                harbex::referenceWordScore(foldedQuery, foldedText),
            "whole query as a word");

    const harbex::ClipTimeWordMatch cut = harbex::extractTimeWord(query);
    require(cut.rest.size() <= query.size(), "time word cut");
    const harbex::ClipSearchQuery words = harbex::ClipSearchQuery::make(cut.rest);
    for (const harbex::ClipSearchWord& word : words.words) {
        require(harbex::wordScore(word, foldedText) ==
                    harbex::referenceWordScore(word.folded(), foldedText),
                "query word");
    }

    // The text made long enough to carry byte pairs, in the body of an entry whose title and
    // application name are the text and the query.
    std::string longText(text);
    while (!text.empty() && longText.size() < harbex::BytePairSet::kSmallestText) longText += text;
    harbex::ClipSearchEntry entry;
    entry.title = foldedText;
    entry.appName = foldedQuery;
    entry.body = FoldedText::fold(longText);
    entry.bodyPairs = harbex::BytePairSet::of(entry.body.bytes());
    for (const harbex::ClipSearchWord& word : words.words) {
        std::optional<int> best;
        const auto weigh = [&](const FoldedText& field, int weight) {
            if (auto score = harbex::referenceWordScore(word.folded(), field)) {
                best = std::max(best.value_or(0), weight * *score);
            }
        };
        weigh(entry.title, 3);
        weigh(entry.appName, 2);
        weigh(entry.body, 1);
        require(harbex::weightedWordScore(word, entry) == best, "weighted word");
    }
    (void)harbex::entryScore(words, entry);

    // Typing the query a byte at a time and taking it back gives what fresh searches give.
    harbex::ClipItem first;
    first.id.bytes[0] = 1;
    first.text = std::string(text);
    harbex::ClipItem second;
    second.id.bytes[0] = 2;
    second.text = longText;
    second.appName = std::string(query);
    second.date = harbex::Date{1};
    static const harbex::Calendar calendar("UTC", "en_US");
    const std::unordered_set<harbex::Uuid> pinned;
    harbex::ClipSearchIndex typed;
    harbex::ClipSearchIndex fresh;
    typed.rebuild({first, second});
    fresh.rebuild({first, second});
    const std::size_t steps = std::min<std::size_t>(query.size(), 24);
    for (std::size_t k = 0; k < 2 * steps; ++k) {
        const std::size_t length = k < steps ? k + 1 : 2 * steps - k - 1;
        const harbex::ClipSearchRequest request{std::string(query.substr(0, length)),
                                                harbex::ClipFilter::all, std::nullopt};
        fresh.forgetPreviousQuery();
        require(typed.search(request, pinned, harbex::Date{2}, calendar) ==
                    fresh.search(request, pinned, harbex::Date{2}, calendar),
                "typed search");
    }
    return 0;
}
