#include "HarbexClipCore/Model/ClipHistory.hpp"

#include <algorithm>
#include <cassert>

namespace harbex {

namespace {

// Moves the elements at `fromOffsets` (in their current order) to stand before the element now at
// `toOffset`, as a list's drag and drop does.
template <class T>
void moveElements(std::vector<T>& values, std::span<const std::size_t> fromOffsets,
                  std::size_t toOffset) {
    std::vector<bool> moving(values.size(), false);
    std::size_t movingCount = 0;
    for (const std::size_t offset : fromOffsets) {
        if (offset < values.size() && !moving[offset]) {
            moving[offset] = true;
            ++movingCount;
        }
    }
    if (movingCount == 0) return;
    toOffset = std::min(toOffset, values.size());

    std::vector<T> moved;
    std::vector<T> rest;
    moved.reserve(movingCount);
    rest.reserve(values.size() - movingCount);
    std::size_t insertAt = 0;
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (i < toOffset && !moving[i]) ++insertAt;
        (moving[i] ? moved : rest).push_back(std::move(values[i]));
    }
    rest.insert(rest.begin() + static_cast<std::ptrdiff_t>(insertAt),
                std::make_move_iterator(moved.begin()), std::make_move_iterator(moved.end()));
    values = std::move(rest);
}

}  // namespace

ClipHistory::ClipHistory(ClipLibrary library) : library_(std::move(library)) {}

void ClipHistory::setLibrary(ClipLibrary library) {
    library_ = std::move(library);
    indexStale_ = true;
}

void ClipHistory::setItems(std::vector<ClipItem> items) {
    library_.items = std::move(items);
    indexStale_ = true;
}

void ClipHistory::rebuildIndex() const {
    const auto& items = library_.items;
    stamps_.clear();
    stamps_.reserve(items.size());
    top_ = static_cast<std::int64_t>(items.size()) - 1;
    for (std::size_t i = 0; i < items.size(); ++i) {
        stamps_[items[i].id] = top_ - static_cast<std::int64_t>(i);
    }
    indexStale_ = false;
}

std::optional<std::size_t> ClipHistory::indexOf(const Uuid& id) const {
    if (indexStale_) rebuildIndex();
    const auto found = stamps_.find(id);
    if (found == stamps_.end()) return std::nullopt;
    const auto index = static_cast<std::size_t>(top_ - found->second);
    assert(index < library_.items.size() && library_.items[index].id == id);
    return index;
}

const ClipItem* ClipHistory::item(const Uuid& id) const {
    const auto index = indexOf(id);
    return index ? &library_.items[*index] : nullptr;
}

const ClipItem* ClipHistory::itemWithFingerprint(std::string_view fingerprint) const {
    for (const auto& item : library_.items) {
        if (item.fingerprint == fingerprint) return &item;
    }
    return nullptr;
}

void ClipHistory::insertAtFront(ClipItem item) {
    assert(!indexOf(item.id) && "an id is in the history at most once");
    const Uuid id = item.id;
    library_.items.insert(library_.items.begin(), std::move(item));
    if (!indexStale_) stamps_[id] = ++top_;
}

bool ClipHistory::moveToFront(ClipItem item) {
    const auto index = indexOf(item.id);
    if (!index) return false;
    auto& items = library_.items;
    items[*index] = std::move(item);
    if (*index == 0) return true;
    std::rotate(items.begin(), items.begin() + static_cast<std::ptrdiff_t>(*index),
                items.begin() + static_cast<std::ptrdiff_t>(*index) + 1);
    // Only the items before the old place moved; when that is few, fix them in place.
    stamps_[items[0].id] = top_;
    for (std::size_t i = 1; i <= *index; ++i) {
        stamps_[items[i].id] = top_ - static_cast<std::int64_t>(i);
    }
    return true;
}

bool ClipHistory::replace(ClipItem item) {
    const auto index = indexOf(item.id);
    if (!index) return false;
    library_.items[*index] = std::move(item);
    return true;
}

std::vector<ClipItem> ClipHistory::remove(std::span<const Uuid> ids) {
    if (ids.empty()) return {};
    const ClipIDSet doomed(ids.begin(), ids.end());
    std::vector<Decision> decisions(library_.items.size(), Decision::keep);
    for (std::size_t i = 0; i < decisions.size(); ++i) {
        if (doomed.contains(library_.items[i].id)) decisions[i] = Decision::remove;
    }
    for (auto& board : library_.pinboards) {
        std::erase_if(board.itemIDs, [&](const Uuid& id) { return doomed.contains(id); });
    }
    return removeWhere(decisions);
}

std::vector<ClipItem> ClipHistory::removeWhere(const std::vector<Decision>& decisions) {
    auto& items = library_.items;
    assert(decisions.size() == items.size());
    const auto first = std::find(decisions.begin(), decisions.end(), Decision::remove);
    if (first == decisions.end()) return {};

    std::vector<ClipItem> removed;
    std::size_t write = static_cast<std::size_t>(first - decisions.begin());
    for (std::size_t read = write; read < items.size(); ++read) {
        if (decisions[read] == Decision::remove) {
            removed.push_back(std::move(items[read]));
        } else {
            if (write != read) items[write] = std::move(items[read]);
            ++write;
        }
    }
    const bool onlyTail =
        write == static_cast<std::size_t>(first - decisions.begin()) && !indexStale_;
    items.erase(items.begin() + static_cast<std::ptrdiff_t>(write), items.end());
    if (onlyTail) {
        // Every removed item was at the end: the others keep their stamps and their indexes.
        for (const auto& item : removed) stamps_.erase(item.id);
    } else {
        indexStale_ = true;
    }
    return removed;
}

Pinboard* ClipHistory::findPinboard(const Uuid& board) {
    for (auto& candidate : library_.pinboards) {
        if (candidate.id == board) return &candidate;
    }
    return nullptr;
}

const Pinboard* ClipHistory::pinboard(const Uuid& board) const {
    for (const auto& candidate : library_.pinboards) {
        if (candidate.id == board) return &candidate;
    }
    return nullptr;
}

void ClipHistory::addPinboard(Pinboard board) {
    assert(!pinboard(board.id) && "a board id is used once");
    library_.pinboards.push_back(std::move(board));
}

bool ClipHistory::renamePinboard(const Uuid& board, std::string name) {
    Pinboard* found = findPinboard(board);
    if (found) found->name = std::move(name);
    return found != nullptr;
}

bool ClipHistory::setPinboardColor(const Uuid& board, std::string color) {
    Pinboard* found = findPinboard(board);
    if (found) found->color = std::move(color);
    return found != nullptr;
}

bool ClipHistory::setPinboardSymbol(const Uuid& board, std::string symbol) {
    Pinboard* found = findPinboard(board);
    if (found) found->symbol = std::move(symbol);
    return found != nullptr;
}

bool ClipHistory::removePinboard(const Uuid& board) {
    return std::erase_if(library_.pinboards,
                         [&](const Pinboard& candidate) { return candidate.id == board; }) > 0;
}

void ClipHistory::movePinboards(std::span<const std::size_t> fromOffsets, std::size_t toOffset) {
    moveElements(library_.pinboards, fromOffsets, toOffset);
}

bool ClipHistory::addToPinboard(const Uuid& board, const Uuid& item) {
    Pinboard* found = findPinboard(board);
    if (!found) return false;
    if (std::find(found->itemIDs.begin(), found->itemIDs.end(), item) == found->itemIDs.end()) {
        found->itemIDs.push_back(item);
    }
    return true;
}

bool ClipHistory::removeFromPinboard(const Uuid& board, const Uuid& item) {
    Pinboard* found = findPinboard(board);
    if (!found) return false;
    std::erase(found->itemIDs, item);
    return true;
}

bool ClipHistory::moveOnPinboard(const Uuid& board, std::span<const std::size_t> fromOffsets,
                                 std::size_t toOffset) {
    Pinboard* found = findPinboard(board);
    if (!found) return false;
    moveElements(found->itemIDs, fromOffsets, toOffset);
    return true;
}

ClipIDSet ClipHistory::protectedIDs(const ClipIDSet& pinned) const {
    ClipIDSet ids = pinned;
    for (const auto& board : library_.pinboards)
        ids.insert(board.itemIDs.begin(), board.itemIDs.end());
    return ids;
}

std::vector<ClipHistory::Decision> ClipHistory::pruneDecisions(Date now, ClipRetention retention,
                                                               std::size_t maxCount,
                                                               const ClipIDSet& pinned) const {
    const ClipIDSet protectedSet = protectedIDs(pinned);
    const auto limit = ageLimit(retention);
    const std::optional<Date> oldestKept = limit ? std::optional(now - *limit) : std::nullopt;

    const auto& items = library_.items;
    std::vector<Decision> decisions(items.size(), Decision::keep);
    std::size_t keptUnprotected = 0;
    for (std::size_t i = 0; i < items.size(); ++i) {
        const ClipItem& item = items[i];
        if (protectedSet.contains(item.id)) continue;
        const bool expired = item.expiresAt && *item.expiresAt <= now;
        const bool tooOld = oldestKept && item.date < *oldestKept;
        if (expired || tooOld || keptUnprotected >= maxCount) {
            decisions[i] = Decision::remove;
        } else {
            ++keptUnprotected;
        }
    }
    return decisions;
}

ClipHistory::PruneResult ClipHistory::pruned(Date now, ClipRetention retention,
                                             std::size_t maxCount, const ClipIDSet& pinned) const {
    const auto decisions = pruneDecisions(now, retention, maxCount, pinned);
    PruneResult result;
    for (std::size_t i = 0; i < decisions.size(); ++i) {
        auto& target = decisions[i] == Decision::keep ? result.kept : result.removed;
        target.push_back(library_.items[i]);
    }
    return result;
}

std::vector<ClipItem> ClipHistory::prune(Date now, ClipRetention retention, std::size_t maxCount,
                                         const ClipIDSet& pinned) {
    return removeWhere(pruneDecisions(now, retention, maxCount, pinned));
}

std::optional<Date> ClipHistory::clearCutoff(ClearRange range, Date now, const Calendar& calendar) {
    switch (range) {
        case ClearRange::lastHour: return now - 3600.0;
        case ClearRange::today: return calendar.startOfDay(now);
        case ClearRange::everything: return std::nullopt;
    }
    return std::nullopt;
}

std::vector<ClipItem> ClipHistory::clear(ClearRange range, Date now, const Calendar& calendar,
                                         const ClipIDSet& pinned) {
    const ClipIDSet protectedSet = protectedIDs(pinned);
    const auto cutoff = clearCutoff(range, now, calendar);
    const auto& items = library_.items;
    std::vector<Decision> decisions(items.size(), Decision::keep);
    for (std::size_t i = 0; i < items.size(); ++i) {
        if (protectedSet.contains(items[i].id)) continue;
        if (!cutoff || items[i].date >= *cutoff) decisions[i] = Decision::remove;
    }
    return removeWhere(decisions);
}

}  // namespace harbex
