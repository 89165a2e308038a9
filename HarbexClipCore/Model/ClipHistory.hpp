#pragma once

// The live history: the library value and every operation that changes it. The engine owns one
// and changes it only through these operations; `library()` is what the store saves.
// Thread: main (not synchronised).

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "HarbexClipCore/Model/ClipItem.hpp"
#include "HarbexClipCore/Model/ClipLibrary.hpp"
#include "HarbexClipCore/Model/ClipRetention.hpp"
#include "HarbexClipCore/Support/Calendar.hpp"
#include "HarbexClipCore/Support/Date.hpp"
#include "HarbexClipCore/Support/EnumNames.hpp"
#include "HarbexClipCore/Support/Uuid.hpp"

namespace harbex {

using ClipIDSet = std::unordered_set<Uuid>;

class ClipHistory {
public:
    // What "Clear History…" removes: copies made in the last hour, since the start of today, or
    // all of them (protected copies always stay).
    enum class ClearRange { lastHour, today, everything };

    struct PruneResult {
        std::vector<ClipItem> kept;  // newest first
        std::vector<ClipItem> removed;
    };

    ClipHistory() = default;
    explicit ClipHistory(ClipLibrary library);

    const ClipLibrary& library() const { return library_; }
    const std::vector<ClipItem>& items() const { return library_.items; }
    const std::vector<Pinboard>& pinboards() const { return library_.pinboards; }
    // Replaces everything, as after loading or importing.
    void setLibrary(ClipLibrary library);
    // Replaces the items (newest first), as after pruning; pinboards stay.
    void setItems(std::vector<ClipItem> items);

    // Lookups by identity, in constant time.
    std::optional<std::size_t> indexOf(const Uuid& id) const;
    const ClipItem* item(const Uuid& id) const;
    // The item holding this content, if any (a linear scan: fingerprints change on edits).
    const ClipItem* itemWithFingerprint(std::string_view fingerprint) const;

    // Item operations. Each returns whether it found what it names.
    // Requires that no item has `item.id` yet.
    void insertAtFront(ClipItem item);
    // Moves the item with `item.id` to the front and stores `item` in its place (a re-copy).
    bool moveToFront(ClipItem item);
    // Stores `item` over the item with the same id, where it stands (edits, titles, counters).
    bool replace(ClipItem item);
    // Removes the items and their ids from every pinboard; returns the removed items, in
    // history order, so that their images can be deleted.
    std::vector<ClipItem> remove(std::span<const Uuid> ids);
    std::vector<ClipItem> remove(const Uuid& id) { return remove(std::span(&id, 1)); }

    // Pinboard operations. Boards are named by id; each returns whether it found the board.
    void addPinboard(Pinboard board);
    bool renamePinboard(const Uuid& board, std::string name);
    bool setPinboardColor(const Uuid& board, std::string color);
    bool setPinboardSymbol(const Uuid& board, std::string symbol);
    bool removePinboard(const Uuid& board);
    // Moves the boards at `fromOffsets` to stand before the board now at `toOffset` (a list's
    // drag and drop; `toOffset` may equal the count). Offsets out of range are ignored.
    void movePinboards(std::span<const std::size_t> fromOffsets, std::size_t toOffset);
    // Appends the item id unless the board already holds it.
    bool addToPinboard(const Uuid& board, const Uuid& item);
    // Removes every occurrence of the item id, keeping the order of the rest.
    bool removeFromPinboard(const Uuid& board, const Uuid& item);
    bool moveOnPinboard(const Uuid& board, std::span<const std::size_t> fromOffsets,
                        std::size_t toOffset);
    const Pinboard* pinboard(const Uuid& board) const;

    // The ids pruning and clearing never remove: the pinned ids given, and every id on a board.
    ClipIDSet protectedIDs(const ClipIDSet& pinned) const;

    // Splits the items by the retention rules, newest first: protected copies stay and do not
    // count; expired sensitive copies go; copies older than the retention's age go; of the rest
    // the newest `maxCount` stay. Pure: the history is unchanged (see `prune`).
    PruneResult pruned(Date now, ClipRetention retention, std::size_t maxCount,
                       const ClipIDSet& pinned) const;
    // Applies the same rules in place and returns the removed items. Only the items after the
    // first removed one move, so a prune that removes nothing or only the oldest is cheap.
    std::vector<ClipItem> prune(Date now, ClipRetention retention, std::size_t maxCount,
                                const ClipIDSet& pinned);

    // The earliest `date` that `range` removes at `now`; `today` uses the calendar's day start.
    static std::optional<Date> clearCutoff(ClearRange range, Date now, const Calendar& calendar);
    // Removes the unprotected copies whose date is at or after the range's cut-off; returns them.
    std::vector<ClipItem> clear(ClearRange range, Date now, const Calendar& calendar,
                                const ClipIDSet& pinned);

private:
    enum class Decision { keep, remove };
    std::vector<Decision> pruneDecisions(Date now, ClipRetention retention, std::size_t maxCount,
                                         const ClipIDSet& pinned) const;
    // Removes the items whose decision is `remove`, keeping order; returns them.
    std::vector<ClipItem> removeWhere(const std::vector<Decision>& decisions);
    Pinboard* findPinboard(const Uuid& board);
    void rebuildIndex() const;

    ClipLibrary library_;
    // id → stamp, where an item's index is `top_ - stamp`. Inserting at the front takes a new
    // stamp and so shifts every index without touching the map; removing the last item keeps
    // the rest valid. Anything else marks the map stale and the next lookup rebuilds it.
    mutable std::unordered_map<Uuid, std::int64_t> stamps_;
    mutable std::int64_t top_ = -1;
    mutable bool indexStale_ = true;
};

template <>
struct EnumNames<ClipHistory::ClearRange> {
    static constexpr std::array values{
        std::pair{ClipHistory::ClearRange::lastHour, std::string_view("lastHour")},
        std::pair{ClipHistory::ClearRange::today, std::string_view("today")},
        std::pair{ClipHistory::ClearRange::everything, std::string_view("everything")},
    };
};

}  // namespace harbex
