#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "HarbexClipCore/Model/ClipKind.hpp"
#include "HarbexClipCore/Support/Date.hpp"
#include "HarbexClipCore/Support/Uuid.hpp"
#include "HarbexClipCore/Text/BytePairSet.hpp"
#include "HarbexClipCore/Text/ClipSearchScore.hpp"
#include "HarbexClipCore/Text/FoldedText.hpp"

namespace harbex {

struct ClipItem;

// One copy made ready for searching: its texts folded once, when the copy arrives or changes,
// so that each keystroke only compares. Thread: any (a value).
struct ClipSearchEntry {
    // No more than this many characters of the text and of the recognised text are searched.
    static constexpr std::size_t kSearchedCharacters = 20'000;

    Uuid id;
    Date date;  // when last copied: newer copies list first among equal scores
    FoldedText title;
    // The text, the link title, the recognised text and the file paths, one per line.
    FoldedText body;
    // The body's neighbouring byte pairs, when the body is long enough to be worth it.
    BytePairSet bodyPairs;
    FoldedText appName;
    // The source application's bundle identifier as captured, for the application filter; never
    // scored.
    std::optional<std::string> appID;
    // Last, where it fills what would be padding.
    ClipKind kind = ClipKind::text;

    // Thread: any. Cost grows with the texts (at most 20,000 characters each of text and
    // recognised text).
    static ClipSearchEntry make(const ClipItem& item);

    // What the search reads; valid while the entry is unchanged.
    ClipSearchFields fields() const {
        return {title.view(), appName.view(), body.view(), bodyPairs.table()};
    }

    // Bytes held on the heap beyond the entry itself.
    std::size_t heapBytes() const;

    friend bool operator==(const ClipSearchEntry&, const ClipSearchEntry&) = default;
};

}  // namespace harbex
