// Holds the fast word scorer and the fast folding road to their plain counterparts on any bytes,
// and runs the time-word cut and the entry score over the same bytes.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "HarbexClipCore/Testing/ReferenceSearchScore.hpp"
#include "HarbexClipCore/Text/ClipSearchEntry.hpp"
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

    harbex::ClipSearchEntry entry;
    entry.title = foldedText.slice(0, 0);
    entry.body = foldedText;
    entry.appName = foldedQuery;
    (void)harbex::entryScore(words, entry);
    return 0;
}
