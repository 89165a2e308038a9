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

std::string persistedName(const ClipLibrarySection& section) {
    using K = ClipLibrarySection::Kind;
    switch (section.kind) {
        case K::kind: return "kind:" + std::string(enumName(section.filter));
        case K::pinboard:
            return "pinboard:" + (section.pinboardID ? section.pinboardID->string() : "");
        case K::app: return "app:" + section.appID.value_or("");
        case K::all: return "all";
        case K::today: return "today";
        case K::pinned: return "pinned";
    }
    return "all";
}

std::optional<ClipLibrarySection> sectionFromPersistedName(std::string_view name) {
    if (name == "all") return ClipLibrarySection::all();
    if (name == "today") return ClipLibrarySection::today();
    if (name == "pinned") return ClipLibrarySection::pinned();
    const std::size_t colon = name.find(':');
    if (colon == std::string_view::npos) return std::nullopt;
    const std::string_view head = name.substr(0, colon);
    const std::string_view tail = name.substr(colon + 1);
    if (head == "kind") {
        const std::optional<ClipFilter> filter = enumFromName<ClipFilter>(tail);
        // `all` and `pinned` have sections of their own.
        if (!filter || *filter == ClipFilter::all || *filter == ClipFilter::pinned) {
            return std::nullopt;
        }
        return ClipLibrarySection::ofKind(*filter);
    }
    if (head == "pinboard") {
        const std::optional<Uuid> id = Uuid::parse(tail);
        if (!id) return std::nullopt;
        return ClipLibrarySection::pinboard(*id);
    }
    if (head == "app" && !tail.empty()) return ClipLibrarySection::app(std::string(tail));
    return std::nullopt;
}

}  // namespace harbex
