#include "HarbexClipCore/Library/ClipLibrarySection.hpp"

#include <algorithm>

namespace harbex {

bool sectionHolds(const ClipLibrarySection& section, const ClipItem& item,
                  const ClipSectionContext& context) {
    using K = ClipLibrarySection::Kind;
    const bool pinned = context.pinnedIDs && context.pinnedIDs->contains(item.id);
    switch (section.kind) {
        case K::kind:
            return admits(section.filter, item.kind,
                          pinned ? ClipPinState::pinned : ClipPinState::unpinned);
        case K::pinboard:
            return context.board && std::ranges::find(context.board->itemIDs, item.id) !=
                                        context.board->itemIDs.end();
        case K::app: return item.appID == section.appID;
        case K::all: return true;
        case K::today: return item.date >= context.startOfToday;
        case K::pinned: return pinned;
    }
    return false;
}

}  // namespace harbex
