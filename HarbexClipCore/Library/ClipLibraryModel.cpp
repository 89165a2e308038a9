#include "HarbexClipCore/Library/ClipLibraryModel.hpp"

#include <algorithm>
#include <tuple>

#include "HarbexClipCore/Text/FoldedText.hpp"

namespace harbex {

ClipLibraryModel::ClipLibraryModel(ClipLibraryEngine& engine, NowFunction now, Calendar calendar)
    : engine_(engine), now_(std::move(now)), calendar_(std::move(calendar)) {
    sort_ = engine_.settings()->window.sort;
    showsGrid_ = engine_.settings()->window.layout == ClipLibraryLayout::grid;
    const auto update = [this](const auto&) {
        listing_.update(engine_.history().get(), engine_.pins().get(), engine_.pinboards().get());
        refresh();
    };
    watch_.push_back(engine_.history().subscribe(update));
    watch_.push_back(engine_.pins().subscribe(update));
    watch_.push_back(engine_.pinboards().subscribe(update));
    update(0);
}

void ClipLibraryModel::sortItems(std::vector<ClipItem>& items, ClipLibrarySort sort) {
    const auto newestFirst = [](const ClipItem& a, const ClipItem& b) {
        if (a.date != b.date) return a.date > b.date;
        return a.id < b.id;
    };
    switch (sort) {
        case ClipLibrarySort::newest: std::ranges::sort(items, newestFirst); return;
        case ClipLibrarySort::mostPasted:
            std::ranges::sort(items, [&](const ClipItem& a, const ClipItem& b) {
                if (a.timesPasted != b.timesPasted) return a.timesPasted > b.timesPasted;
                return newestFirst(a, b);
            });
            return;
        case ClipLibrarySort::name: {
            // Titles are folded once, not at every comparison.
            std::vector<std::pair<std::string, std::size_t>> keys;
            keys.reserve(items.size());
            for (std::size_t i = 0; i < items.size(); ++i) {
                keys.emplace_back(std::string(FoldedText::fold(items[i].title()).bytes()), i);
            }
            std::ranges::sort(keys, [&](const auto& a, const auto& b) {
                if (a.first != b.first) return a.first < b.first;
                return newestFirst(items[a.second], items[b.second]);
            });
            std::vector<ClipItem> sorted;
            sorted.reserve(items.size());
            for (const auto& key : keys) sorted.push_back(std::move(items[key.second]));
            items = std::move(sorted);
            return;
        }
    }
}

void ClipLibraryModel::refresh() {
    items_ = listing_.list(section_, query_, now_(), calendar_);
    // A pinboard shows the user's arrangement unless they asked for another order.
    const bool keepsBoardOrder =
        section_.kind == ClipLibrarySection::Kind::pinboard && sort_ == ClipLibrarySort::newest;
    if (!keepsBoardOrder) sortItems(items_, sort_);
    if (selectedID_ && std::ranges::none_of(
                           items_, [&](const ClipItem& item) { return item.id == *selectedID_; })) {
        selectedID_.reset();
    }
    revision_.set(revision_.get() + 1);
}

void ClipLibraryModel::setSection(ClipLibrarySection section) {
    section_ = std::move(section);
    refresh();
}

void ClipLibraryModel::setQuery(std::string query) {
    query_ = std::move(query);
    refresh();
}

void ClipLibraryModel::setSort(ClipLibrarySort sort) {
    sort_ = sort;
    refresh();
}

void ClipLibraryModel::setShowsGrid(bool showsGrid) {
    showsGrid_ = showsGrid;
    revision_.set(revision_.get() + 1);
}

void ClipLibraryModel::select(std::optional<Uuid> id) {
    selectedID_ = std::move(id);
    revision_.set(revision_.get() + 1);
}

}  // namespace harbex
