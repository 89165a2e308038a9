#include "HarbexClipCore/Library/ClipLibraryListing.hpp"

#include <algorithm>

#include "HarbexClipCore/Text/ClipSearchScore.hpp"

namespace harbex {

void ClipLibraryListing::update(const std::vector<ClipItem>& history,
                                const std::vector<ClipItem>& pins,
                                const std::vector<Pinboard>& pinboards) {
    items_ = history;
    positions_.clear();
    for (std::size_t i = 0; i < items_.size(); ++i) positions_.emplace(items_[i].id, i);
    pinnedIDs_.clear();
    for (const ClipItem& pin : pins) {
        pinnedIDs_.insert(pin.id);
        if (positions_.emplace(pin.id, items_.size()).second) items_.push_back(pin);
    }
    pinboards_ = pinboards;
    boarded_.clear();
    for (const Pinboard& board : pinboards_)
        boarded_.insert(board.itemIDs.begin(), board.itemIDs.end());
    index_.rebuild(items_);
}

const ClipItem* ClipLibraryListing::item(const Uuid& id) const {
    const auto found = positions_.find(id);
    return found == positions_.end() ? nullptr : &items_[found->second];
}

const Pinboard* ClipLibraryListing::pinboard(const Uuid& id) const {
    const auto found = std::ranges::find(pinboards_, id, &Pinboard::id);
    return found == pinboards_.end() ? nullptr : &*found;
}

std::vector<ClipItem> ClipLibraryListing::list(const ClipLibrarySection& section,
                                               const std::string& query, Date now,
                                               const Calendar& calendar) {
    ClipSectionContext context{calendar.startOfDay(now), &pinnedIDs_, nullptr};
    if (section.kind == ClipLibrarySection::Kind::pinboard && section.pinboardID) {
        context.board = pinboard(*section.pinboardID);
    }
    const ClipSearchOutcome outcome =
        index_.search({query, ClipFilter::all, std::nullopt}, pinnedIDs_, now, calendar);
    const bool hasWords = !ClipSearchQuery::make(extractTimeWord(query).rest).words.empty();
    std::vector<ClipItem> out;
    if (context.board && !hasWords) {
        std::unordered_set<Uuid> matched;
        for (const ClipSearchResult& result : outcome.results) matched.insert(result.id);
        for (const Uuid& id : context.board->itemIDs) {
            if (const ClipItem* found = item(id); found && matched.contains(id)) {
                out.push_back(*found);
            }
        }
        return out;
    }
    for (const ClipSearchResult& result : outcome.results) {
        const ClipItem& candidate = items_[positions_.at(result.id)];
        if (sectionHolds(section, candidate, context)) out.push_back(candidate);
    }
    return out;
}

}  // namespace harbex
