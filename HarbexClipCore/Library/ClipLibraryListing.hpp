#pragma once

#include <string>
#include <unordered_set>
#include <vector>

#include "HarbexClipCore/Library/ClipLibrarySection.hpp"
#include "HarbexClipCore/Model/ClipItem.hpp"
#include "HarbexClipCore/Model/ClipLibrary.hpp"
#include "HarbexClipCore/Support/Calendar.hpp"
#include "HarbexClipCore/Text/ClipSearchIndex.hpp"

namespace harbex {

// The library's own copy of what it lists (the history, then pins made elsewhere that the
// history lacks) with a search index over it: the one place both library models ask "which
// copies does this section hold for this query". Thread: main.
class ClipLibraryListing {
public:
    // Takes a new state of the history; rebuilds the index.
    void update(const std::vector<ClipItem>& history, const std::vector<ClipItem>& pins,
                const std::vector<Pinboard>& pinboards);

    // The section's copies that match `query` (time words included). Without search words a
    // pinboard keeps its own order and every other section lists newest first; with them the
    // best match comes first.
    std::vector<ClipItem> list(const ClipLibrarySection& section, const std::string& query,
                               Date now, const Calendar& calendar);

    const std::vector<ClipItem>& items() const { return items_; }
    const std::vector<Pinboard>& pinboards() const { return pinboards_; }
    const std::unordered_set<Uuid>& pinnedIDs() const { return pinnedIDs_; }
    const ClipItem* item(const Uuid& id) const;
    const Pinboard* pinboard(const Uuid& id) const;
    bool isOnPinboard(const Uuid& id) const { return boarded_.contains(id); }

private:
    std::vector<ClipItem> items_;
    std::unordered_map<Uuid, std::size_t> positions_;
    std::vector<Pinboard> pinboards_;
    std::unordered_set<Uuid> pinnedIDs_;
    std::unordered_set<Uuid> boarded_;
    ClipSearchIndex index_;
};

}  // namespace harbex
