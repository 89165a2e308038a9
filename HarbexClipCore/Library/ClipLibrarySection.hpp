#pragma once

#include <optional>
#include <string>
#include <unordered_set>

#include "HarbexClipCore/Model/ClipItem.hpp"
#include "HarbexClipCore/Model/ClipLibrary.hpp"
#include "HarbexClipCore/Support/Uuid.hpp"
#include "HarbexClipCore/Text/ClipFilter.hpp"

namespace harbex {

// What the library's sidebar selects. A value; build it with the factories.
struct ClipLibrarySection {
    enum class Kind { kind, pinboard, app, all, today, pinned };

    Kind kind = Kind::all;
    ClipFilter filter = ClipFilter::all;  // for `kind`
    std::optional<Uuid> pinboardID;       // for `pinboard`
    std::optional<std::string> appID;     // for `app`: a bundle identifier

    static ClipLibrarySection ofKind(ClipFilter filter) { return {Kind::kind, filter, {}, {}}; }
    static ClipLibrarySection pinboard(const Uuid& id) { return {Kind::pinboard, {}, id, {}}; }
    static ClipLibrarySection app(std::string id) { return {Kind::app, {}, {}, std::move(id)}; }
    static ClipLibrarySection all() { return {Kind::all, {}, {}, {}}; }
    static ClipLibrarySection today() { return {Kind::today, {}, {}, {}}; }
    static ClipLibrarySection pinned() { return {Kind::pinned, {}, {}, {}}; }

    friend bool operator==(const ClipLibrarySection&, const ClipLibrarySection&) = default;
};

// What a section needs to decide membership, gathered once per listing.
struct ClipSectionContext {
    Date startOfToday;
    const std::unordered_set<Uuid>* pinnedIDs = nullptr;
    const Pinboard* board = nullptr;  // the selected pinboard, for `pinboard`
};

// Whether `item` belongs to `section`. `pinned` takes the pins only; a pinboard's own order is
// applied by the caller. Thread: any.
bool sectionHolds(const ClipLibrarySection& section, const ClipItem& item,
                  const ClipSectionContext& context);

}  // namespace harbex
