#pragma once

#include <optional>
#include <string>
#include <vector>

#include "HarbexClipCore/Library/ClipLibraryEngine.hpp"
#include "HarbexClipCore/Library/ClipLibraryListing.hpp"
#include "HarbexClipCore/Library/ClipLibrarySection.hpp"
#include "HarbexClipCore/Settings/ClipSettingsChoices.hpp"
#include "HarbexClipCore/Support/Calendar.hpp"
#include "HarbexClipCore/Support/Clock.hpp"
#include "HarbexClipCore/Support/Observable.hpp"

namespace harbex {

// The browsing state of the library's main area: section, query, sort, grid or list. Sorting:
// `newest` by date, newest first; `mostPasted` by times pasted, most first; `name` by title,
// compared as search compares (case and accents ignored). Equal keys fall back to newest
// first, then to the id, so the order never flickers between refreshes. A query orders nothing
// by score here: the chosen sort always holds. Thread: main.
class ClipLibraryModel {
public:
    // The layout and sort start from the window settings; `engine` must outlive the model.
    ClipLibraryModel(ClipLibraryEngine& engine, NowFunction now, Calendar calendar);

    void setSection(ClipLibrarySection section);
    void setQuery(std::string query);
    void setSort(ClipLibrarySort sort);
    void setShowsGrid(bool showsGrid);
    void select(std::optional<Uuid> id);

    const ClipLibrarySection& section() const { return section_; }
    const std::string& query() const { return query_; }
    ClipLibrarySort sort() const { return sort_; }
    bool showsGrid() const { return showsGrid_; }
    const std::vector<ClipItem>& items() const { return items_; }
    const std::optional<Uuid>& selectedID() const { return selectedID_; }

    Observable<std::uint64_t>& revision() { return revision_; }

    // Sorts copies in place as `sort` says. Thread: any.
    static void sortItems(std::vector<ClipItem>& items, ClipLibrarySort sort);

private:
    void refresh();

    ClipLibrarySection section_ = ClipLibrarySection::all();
    std::string query_;
    ClipLibrarySort sort_ = ClipLibrarySort::newest;
    bool showsGrid_ = false;
    std::vector<ClipItem> items_;
    std::optional<Uuid> selectedID_;
    ClipLibraryEngine& engine_;
    std::vector<Subscription> watch_;

    NowFunction now_;
    Calendar calendar_;
    ClipLibraryListing listing_;
    Observable<std::uint64_t> revision_{0};
};

}  // namespace harbex
