#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "HarbexClipCore/Support/Calendar.hpp"
#include "HarbexClipCore/Support/Date.hpp"
#include "HarbexClipCore/Support/Uuid.hpp"
#include "HarbexClipCore/Text/ClipFilter.hpp"
#include "HarbexClipCore/Text/ClipSearchEntry.hpp"
#include "HarbexClipCore/Text/ClipTimeWord.hpp"

namespace harbex {

struct ClipItem;

// What the user asked for: the query as typed (time word included) and the filters around it.
struct ClipSearchRequest {
    std::string query;
    ClipFilter filter = ClipFilter::all;
    std::optional<std::string> appID;  // only copies from this application, by bundle identifier

    friend bool operator==(const ClipSearchRequest&, const ClipSearchRequest&) = default;
};

struct ClipSearchResult {
    Uuid id;
    std::int64_t score = 0;
    Date date;

    friend bool operator==(const ClipSearchResult&, const ClipSearchResult&) = default;
};

struct ClipSearchOutcome {
    // Highest score first; among equal scores the newest copy first.
    std::vector<ClipSearchResult> results;
    std::optional<ClipTimeWord> timeWord;
    std::optional<ClipDateRange> range;

    friend bool operator==(const ClipSearchOutcome&, const ClipSearchOutcome&) = default;
};

// The search entries of the whole history, kept in step with it, and the search over them.
// While the user keeps typing (each word of the new query extends the word in the same place
// of the last one, and the filters and range are unchanged) only the last query's matches are
// scored again: a longer word never matches where its beginning did not. The matches of the
// shorter queries typed on the way are kept until the history changes, so that Backspace
// gives them back without scoring anything.
// Thread: one at a time, the owner's (the main thread in the application).
class ClipSearchIndex {
public:
    // Replaces every entry with ones made from `items`.
    void rebuild(const std::vector<ClipItem>& items);
    // Adds the item's entry, or replaces the one with the same id.
    void put(const ClipItem& item);
    // Drops the entry with this id; nothing happens when there is none.
    void remove(const Uuid& id);
    void clear();

    std::size_t size() const { return records_.size(); }
    // The entry with this id as it was made, or nothing.
    std::optional<ClipSearchEntry> entry(const Uuid& id) const;

    // The copies that match `request` at `now`. `pinned` holds the ids the `pinned` filter
    // takes (pinned copies and those on pinboards; see `pinnedOrOnPinboard`). The calendar
    // places time words in the user's zone and week.
    ClipSearchOutcome search(const ClipSearchRequest& request,
                             const std::unordered_set<Uuid>& pinned, Date now,
                             const Calendar& calendar);

    // Makes the next search score every entry (for measuring, and after outside changes).
    void forgetPreviousQuery() { recent_.clear(); }

    // How many earlier queries are kept for going back to (for tests and measuring).
    std::size_t rememberedQueries() const { return recent_.size(); }

    // Heap bytes the entries take once searched: their texts, the per-copy records and the
    // lookup by id. For measuring.
    std::size_t textBytes() const;

private:
    // What the search knows of one copy. Its folded texts sit together in `texts_`, at
    // `textsAt`: the body's pair table when it has one, then the title and the body. Reading them
    // there, mostly in the order the search visits copies, streams through memory instead of
    // waiting for a separate allocation per text.
    struct Record {
        Uuid id;
        Date date;
        std::uint64_t textsAt = 0;
        std::uint64_t titleMask = 0;
        std::uint64_t appNameMask = 0;
        std::uint64_t bodyMask = 0;
        std::uint32_t titleSize = 0;
        std::uint32_t bodySize = 0;
        std::uint32_t source = 0;  // in `sources_`
        ClipKind kind = ClipKind::text;
        bool hasPairs = false;

        std::size_t textsBytes() const {
            return (hasPairs ? BytePairSet::kTableBytes : 0) + titleSize + bodySize;
        }
    };

    // Where copies came from: the bundle identifier and the application's name as captured.
    // Few differ, so each is kept once, and a search scores a word against each name once.
    struct Source {
        std::optional<std::string> appID;
        FoldedText appName;
    };

    // One query's matches, kept for narrowing it further or going back to it.
    struct RememberedQuery {
        std::vector<std::string> words;
        ClipFilter filter = ClipFilter::all;
        std::optional<std::string> appID;
        std::optional<ClipDateRange> range;
        std::vector<std::uint32_t> matches;  // places in `order_`, newest first
        // Each match's weighted score for each word, a row per match: a word that is the same
        // as before need not be scored again.
        std::vector<std::int32_t> wordScores;
    };

    void changed();
    const std::vector<std::uint32_t>& order();
    std::size_t rememberedSize() const;
    ClipSearchFields fields(const Record& record) const;
    std::uint32_t sourceNumber(const ClipSearchEntry& entry);
    // Appends the entry's texts to `texts_` and returns its record.
    Record store(const ClipSearchEntry& entry);
    // Lays `texts_` out again without the texts of replaced and removed copies, newest first.
    void compact();
    void compactIfWasteful();

    // In no particular order; `positions_` finds a copy's record.
    std::vector<Record> records_;
    std::unordered_map<Uuid, std::size_t> positions_;
    std::string texts_;
    // Bytes of `texts_` that no record uses any more.
    std::size_t deadBytes_ = 0;
    std::vector<Source> sources_;
    // By the bundle identifier (empty for none), a zero byte and the folded name.
    std::unordered_map<std::string, std::uint32_t> sourceNumbers_;
    // Places in `records_`, newest first (ties by id); made again after a change. Scoring in
    // this order leaves only the scores to sort.
    std::vector<std::uint32_t> order_;
    bool orderIsCurrent_ = false;
    // Queries searched since the last change, each narrowing the one below it: the bottom one
    // is the shortest.
    std::vector<RememberedQuery> recent_;
};

}  // namespace harbex
