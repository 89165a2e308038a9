#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "HarbexClipCore/Text/FoldedText.hpp"

namespace harbex {

struct ClipSearchEntry;

// The texts of one copy as the search reads them: views into an entry, or into the block where
// the search index keeps every copy's texts.
struct ClipSearchFields {
    FoldedTextView title;
    FoldedTextView appName;
    FoldedTextView body;
    // The body's table of byte pairs (see `BytePairSet`), or null when it has none.
    const unsigned char* bodyPairs = nullptr;
};

// One folded query word, prepared once per query and then scored against many texts.
// Thread: any (a value).
class ClipSearchWord {
public:
    explicit ClipSearchWord(FoldedText folded);

    const FoldedText& folded() const { return folded_; }
    // Its characters (tokens of the folded text).
    const std::vector<std::uint32_t>& characters() const { return characters_; }

    friend bool operator==(const ClipSearchWord&, const ClipSearchWord&) = default;

private:
    FoldedText folded_;
    std::vector<std::uint32_t> characters_;
};

// A query without its time word: folded, split at spaces, empty pieces dropped.
// Thread: any (a value).
struct ClipSearchQuery {
    std::vector<ClipSearchWord> words;

    static ClipSearchQuery make(std::string_view query);

    friend bool operator==(const ClipSearchQuery&, const ClipSearchQuery&) = default;
};

// How well a word matches a text, both folded; nothing when it does not match. Whole text 1000;
// prefix 800; inside the text 600 at the start of a word, else 400 less a tenth of the distance
// from the start (300 from 1,010 characters on); else, for words of two or more characters, the
// characters in order within the first 2,000 characters with fewer than 9 skipped between any
// two: 200 less 15 per skipped character, at least 20. Thread: any.
std::optional<int> wordScore(const ClipSearchWord& word, const FoldedText& text);
std::optional<int> wordScore(const FoldedText& word, const FoldedText& text);

// A word's best weighted score over an entry's fields (title ×3, application name ×2, body ×1);
// nothing when it matches none. Thread: any.
// `knownAppName`, when given, is the weighted score of the word in the application name (-1 for
// no match), and `fields.appName` is not read.
std::optional<int> weightedWordScore(const ClipSearchWord& word, const ClipSearchFields& fields,
                                     std::optional<int> knownAppName = std::nullopt);
std::optional<int> weightedWordScore(const ClipSearchWord& word, const ClipSearchEntry& entry);

// The sum over the query's words of each word's best weighted score (title ×3, application name
// ×2, body ×1); nothing when some word matches no field. A query without words scores 0.
// Thread: any.
std::optional<std::int64_t> entryScore(const ClipSearchQuery& query, const ClipSearchEntry& entry);
std::optional<std::int64_t> entryScore(std::string_view query, const ClipSearchEntry& entry);

}  // namespace harbex
